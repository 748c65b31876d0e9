// Parser.h: from text to named units with exponents. For mensor's own libraries; not installed.
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

/// How well a text fits that is to be offered.
enum class eFit : std::uint8_t {
    REFUSED,
    READ,
    KIND,   ///< read, and of a kind that has a name
    TARGET  ///< read, and of the kind that is asked for
};

/// A number and the name of a unit, as they are written.
struct CNamedNumber {
    std::string_view Number;
    std::string_view Name;
};

/// Where the parser asks for names.
class CResolver {
public:
    static constexpr std::uint32_t None = 0;

    /// A number of the resolver's choice for the unit with this name, in any spelling, or None.
    virtual std::uint32_t find(std::string_view name) = 0;

    /// Whether a unit has this name, in any spelling.
    virtual bool knows(std::string_view name) = 0;

    /// Whether the name is the program's own, which is no trap.
    virtual bool isOwn(std::string_view name) = 0;

    // For the words of a refusal.

    /// Adds all names that may be suggested.
    virtual void addNamesTo(CNearestNames& nearest) = 0;

    /// Whether a program can ask for this pack.
    virtual bool offers(ePack pack) = 0;

    /// Reads the unit that begins at the byte `begin` of `text` as the refused one was read. REFUSED
    /// comes with the reason.
    virtual eFit fit(std::string_view text, std::size_t begin, CRefusal& refusal) = 0;

    /// Adds what may be written for the token of a refusal that only the resolver understands.
    virtual void addWords(const CRefusal& refusal, std::vector<std::string>& words) = 0;

    /// The sum of values of one kind, in the unit of the last one: "90 min"; empty if there is none.
    virtual std::string sumOf(const std::vector<CNamedNumber>& values) = 0;

protected:
    CResolver() = default;
    CResolver(const CResolver&) = default;
    CResolver& operator=(const CResolver&) = default;
    ~CResolver() = default;
};

/// One named unit of a text and the exponent that it comes to have.
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

    /// Whether the text is one name without an exponent.
    bool isOneName() const { return m_Size == 1 && (*this)[0].Pow == 1 && (*this)[0].Root == 1; }

private:
    std::array<CNamedFactor, 6> m_Few;  // valid up to m_Size, while m_Many is empty
    std::vector<CNamedFactor> m_Many;
    std::size_t m_Size = 0;
};

/// Reads the unit that begins at the byte `begin` of `text`. The dimensionless unit has no factors. An
/// empty unit is refused unless `mayBeEmpty`.
///
/// Returns false where the text is refused; `factors` then has no meaning, and `refusal` tells why.
/// Needs memory only for more than six factors. Passes on what the resolver throws.
MENSOR_EXACT_API bool parse(std::string_view text, std::size_t begin, bool mayBeEmpty,
                            CResolver& resolver, CNamedFactors& factors, CRefusal& refusal);

/// Adds the notes on a text that parse() has read from the byte `begin` on. With `isStrict`, a text that
/// people use for another unit is refused: returns false, and `refusal` tells why.
MENSOR_EXACT_API bool takeNotes(std::string_view text, std::size_t begin,
                                const CNamedFactors& factors, CResolver& resolver, bool isStrict,
                                CNotes& notes, CRefusal& refusal);

/// The sum of values of one kind, in the unit of the last one: "90 min". Empty if there is none.
/// `meaningOf` gives what a name means.
MENSOR_EXACT_API std::string sumOf(
    const std::vector<CNamedNumber>& values,
    const std::function<std::optional<CMeaning>(std::string_view)>& meaningOf);

/// All words of a refusal of parse() or findNumber(), with what to write instead. Whatever is offered
/// was read by the resolver's fit().
MENSOR_EXACT_API CDiagnosis diagnose(const CRefusal& refusal, CResolver& resolver);

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_PARSER_H
