// Parser.h: parses a text into named units with exponents. For mensor's own libraries; not installed.
#ifndef MENSOR_EXACT_PARSER_H
#define MENSOR_EXACT_PARSER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mensor_exact/Definitions.h"
#include "mensor_exact/Meaning.h"
#include "mensor_exact/Notes.h"
#include "mensor_exact/Refusal.h"
#include "mensor_exact/exact_export.h"

namespace mensor::exact {

constexpr std::size_t LongestText = 4096;  // code points
constexpr int DeepestNesting = 64;
constexpr int LargestExponent = 99;

class CNearestNames;

/// How well a suggested text fits. A greater value fits better.
enum class eFit : std::uint8_t {
    REFUSED,
    READ,   ///< accepted
    KIND,   ///< accepted, and its kind has a name
    TARGET  ///< accepted, and of the kind that the caller asked for
};

/// A number and the name of a unit, as the text has them.
struct CNamedNumber {
    std::string_view Number;
    std::string_view Name;
};

/// Looks up names for the parser.
class CResolver {
public:
    static constexpr std::uint32_t None = 0;

    /// Returns a number for the unit with this name, in any spelling, or None. The resolver chooses
    /// the numbers.
    virtual std::uint32_t find(std::string_view name) = 0;

    /// Returns true if a unit has this name, in any spelling.
    virtual bool knows(std::string_view name) = 0;

    /// Returns true if the program defined the name. Such a name is no trap.
    virtual bool isOwn(std::string_view name) = 0;

    // The following functions are called by diagnose() only.

    /// Adds all names that diagnose() may suggest.
    virtual void addNamesTo(CNearestNames& nearest) = 0;

    /// Returns true if diagnose() may suggest this pack.
    virtual bool offers(ePack pack) = 0;

    /// Reads the unit that begins at the byte `begin` of `text`, in the same way as the refused text. If
    /// the result is REFUSED, `refusal` has the reason.
    virtual eFit fit(std::string_view text, std::size_t begin, CRefusal& refusal) = 0;

    /// Adds replacements for the token of `refusal` that only the resolver knows.
    virtual void addWords(const CRefusal& refusal, std::vector<std::string>& words) = 0;

    /// Returns the sum of values of one kind in the unit of the last value: "90 min". Returns an empty
    /// text if the values have no common kind.
    virtual std::string sumOf(const std::vector<CNamedNumber>& values) = 0;

protected:
    CResolver() = default;
    CResolver(const CResolver&) = default;
    CResolver& operator=(const CResolver&) = default;
    ~CResolver() = default;
};

/// One named unit of a text and its final exponent.
struct CNamedFactor {
    CSpan Name;
    std::uint32_t Unit;  ///< what the resolver found
    int Pow;
    int Root;  ///< positive; the fraction is in lowest terms
};

/// The factors of a text in their order. The first few are stored in the object.
class CNamedFactors {
public:
    std::size_t size() const { return m_Size; }
    bool empty() const { return m_Size == 0; }
    const CNamedFactor* begin() const { return m_Many.empty() ? m_Few.data() : m_Many.data(); }
    const CNamedFactor* end() const { return begin() + m_Size; }
    CNamedFactor& operator[](std::size_t i) { return m_Many.empty() ? m_Few[i] : m_Many[i]; }
    const CNamedFactor& operator[](std::size_t i) const { return begin()[i]; }

    void push_back(const CNamedFactor& factor) {
        if (m_Size < m_Few.size()) {
            m_Few[m_Size] = factor;
        } else {
            if (m_Many.empty()) {
                m_Many.assign(m_Few.begin(), m_Few.end());
            }
            m_Many.push_back(factor);
        }
        ++m_Size;
    }

    /// Returns true if the text is one name without an exponent.
    bool isOneName() const { return m_Size == 1 && (*this)[0].Pow == 1 && (*this)[0].Root == 1; }

private:
    std::array<CNamedFactor, 6> m_Few;  // valid up to m_Size, while m_Many is empty
    std::vector<CNamedFactor> m_Many;
    std::size_t m_Size = 0;
};

/// Reads the unit that begins at the byte `begin` of `text`. The dimensionless unit has no factors. An
/// empty unit is refused unless `mayBeEmpty`.
///
/// Returns false if the text is refused. Then `refusal` has the reason, and the caller must not use
/// `factors`. Allocates memory only for more than six factors. Throws what the resolver throws.
MENSOR_EXACT_API bool parse(std::string_view text, std::size_t begin, bool mayBeEmpty,
                            CResolver& resolver, CNamedFactors& factors, CRefusal& refusal);

/// Adds the notes on a text that parse() accepted. The unit begins at the byte `begin`. If `isStrict` is
/// true and people use the text for another unit, returns false and writes the reason into `refusal`.
MENSOR_EXACT_API bool takeNotes(std::string_view text, std::size_t begin,
                                const CNamedFactors& factors, CResolver& resolver, bool isStrict,
                                CNotes& notes, CRefusal& refusal);

/// Returns the sum of values of one kind in the unit of the last value: "90 min". Returns an empty text if
/// the values have no common kind. `meaningOf` returns the meaning of a name.
MENSOR_EXACT_API std::string sumOf(
    const std::vector<CNamedNumber>& values,
    const std::function<std::optional<CMeaning>(std::string_view)>& meaningOf);

/// Returns the message of a refusal of parse() or findNumber(), with corrected texts. The resolver's fit()
/// has accepted each of them.
MENSOR_EXACT_API CDiagnosis diagnose(const CRefusal& refusal, CResolver& resolver);

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_PARSER_H
