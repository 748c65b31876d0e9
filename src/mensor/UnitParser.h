// UnitParser.h: reads the text of a unit. Not installed.
//
// The parser is a state machine. It visits each code point once and keeps slices of the text, not
// copies. The power and the root of a name may stand anywhere before the next name, so a name is
// resolved when the next name begins or the text ends (commit). The factors are multiplied when all
// are known, because units live until the process ends: a refused text must not register a part of
// its product.
#ifndef MENSOR_UNITPARSER_H
#define MENSOR_UNITPARSER_H

#include <cstddef>
#include <memory_resource>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "mensor/Tables.h"
#include "mensor/TextCache.h"
#include "mensor/Unit.h"
#include "mensor/UnitFormat.h"
#include "mensor/mensor_global.h"

namespace mensor::detail {

class CUnitParser {
public:
    // The unit that `text` denotes. Throws what CUnitFormat::parseUnit throws.
    //
    // An unknown name is the most frequent error. Each function that an exception passes through
    // costs about as much as throwing and catching it, and more if it has objects to destroy. So
    // the exception is thrown here, when no objects are left, and this function is always inlined
    // into the one that clients call.
    [[gnu::always_inline]] static CUnitPtr parse(const string_t& text) {
        if (CUnit* const cached = findCached(text)) {
            return cached->shared_from_this();
        }
        std::string_view unknownName;
        {
            CUnitPtr unit = tryParse(text, unknownName);
            if (unit) {
                return unit;
            }
        }
        throw unknownLabel(unknownName);
    }

    // CUnitFormat::parseExponent, on bytes.
    static int parseExponent(std::string_view text);

private:
    struct Factor {
        CUnitPtr Unit;
        int Pow;
        int Root;
    };

    static CUnit* findCached(const string_t& text) {
        return tablesHandedOut.load(std::memory_order_acquire)
                   ? nullptr
                   : textCache.find(std::string_view(text.data(), text.size()),
                                    namesEpoch.load(std::memory_order_acquire));
    }

    // The unit that `text` denotes, or none; then `unknownName` is the first unknown name.
    static CUnitPtr tryParse(const string_t& text, std::string_view& unknownName);
    static std::invalid_argument unknownLabel(std::string_view name);

    explicit CUnitParser(std::string_view text) : m_Text(text) { m_Factors.reserve(UsualFactors); }
    CUnitPtr parse();

    void step(char_t c, const char* at, const char* next);
    std::string_view slice(const char* end) const;
    void beginName(char_t c, const char* at);
    void separate(char_t c);
    void commit();
    bool addFactor();
    void requireSmallExponents() const;
    CUnitPtr product() const;

    const std::string_view m_Text;
    CUnitFormat::eState m_State = CUnitFormat::DEFAULT;
    const char* m_Start = nullptr;  // where the current token began
    std::size_t m_Depth = 0;        // open "[" inside a name in brackets
    std::string_view m_Name;
    std::string_view m_Power;
    std::string_view m_Root;
    bool m_SlashPending = false;  // a "/" was read; the next commit consumes it
    bool m_Inverse = false;       // factors are divisors; each consumed slash toggles it
    bool m_IsRefused = false;     // m_Name is unknown

    // Memory inside the object for the factors of most texts.
    static constexpr std::size_t UsualFactors = 4;
    alignas(Factor) std::byte m_Buffer[UsualFactors * sizeof(Factor)];
    std::pmr::monotonic_buffer_resource m_Memory{m_Buffer, sizeof m_Buffer};
    std::pmr::vector<Factor> m_Factors{&m_Memory};
};

}  // namespace mensor::detail

#endif  // MENSOR_UNITPARSER_H
