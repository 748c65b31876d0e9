// Table.h: the built-in definitions and their meanings, as constant data. Not installed.
#ifndef MENSOR_EXACT_TABLE_H
#define MENSOR_EXACT_TABLE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "mensor_exact/Definitions.h"

namespace mensor::exact {

/// The rows of definitions.def. The compiler evaluates them and makes the hash table of the names.
/// Nothing is computed at load, and nothing is written later.
class CTable {
public:
    static constexpr std::size_t None = static_cast<std::size_t>(-1);
    static constexpr std::uint32_t AllPacks = ~std::uint32_t{0};

    static std::size_t size() noexcept;
    static CDefinition definition(std::size_t row);
    static std::string text(std::size_t row);  ///< the text of the definition
    static std::string_view name(std::size_t row) noexcept;
    static ePack pack(std::size_t row) noexcept;
    static CMeaning meaning(std::size_t row);
    static bool hasOffset(std::size_t row) noexcept;

    /// Returns the row with this name in one of these packs (one bit for each), or None.
    static std::size_t find(std::string_view name, std::uint32_t packs) noexcept;
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_TABLE_H
