// Table.h: the built-in definitions and what they mean, as constant data. For the library's own use;
// not installed.
#ifndef MENSOR_EXACT_TABLE_H
#define MENSOR_EXACT_TABLE_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "mensor_exact/Definitions.h"

namespace mensor::exact {

/// The rows of definitions.def. The compiler has evaluated them and sorted them into a hash table:
/// nothing is done when the library is loaded, and nothing is written later.
class CTable {
public:
    static constexpr std::size_t None = static_cast<std::size_t>(-1);
    static constexpr std::uint32_t AllPacks = ~std::uint32_t{0};

    static std::size_t size() noexcept;
    static CDefinition definition(std::size_t row) noexcept;
    static std::string_view name(std::size_t row) noexcept;
    static ePack pack(std::size_t row) noexcept;
    static std::uint32_t letters(std::size_t row) noexcept;  ///< letterSet() of the name
    static CMeaning meaning(std::size_t row);

    /// The row with this name in one of these packs (a bit for each), or None.
    static std::size_t find(std::string_view name, std::uint32_t packs) noexcept;
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_TABLE_H
