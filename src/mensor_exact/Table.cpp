#include "mensor_exact/Table.h"

#include "mensor_exact/ConstantTable.h"

namespace mensor {
namespace exact {

using namespace table;

std::size_t CTable::size() noexcept { return Rows; }

CDefinition CTable::definition(std::size_t row) noexcept {
    const CLengths& lengths = Lengths[row];
    const std::string_view name = nameOf(row);
    const std::string_view text = definitionOf(row);
    const std::string_view english(text.data() + text.size(), lengths.English);
    const std::string_view source(english.data() + english.size(), lengths.Source);
    return {name, text, english, source, lengths.Pack};
}

std::string_view CTable::name(std::size_t row) noexcept { return nameOf(row); }
ePack CTable::pack(std::size_t row) noexcept { return Lengths[row].Pack; }

CMeaning CTable::meaning(std::size_t row) {
    const CRow& data = Meanings.Row[row];
    if (data.Own != 0) {
        return CMeaning::base(nameOf(data.Own - std::size_t{1}));
    }
    CMeaning result(data.Factor, static_cast<int>(data.Pi), Meanings.Offsets[data.Offset]);
    for (std::size_t slot = 0; slot < SlotCount; ++slot) {
        if (data.Exponents[slot] != 0) {
            result.m_Exponents[slot] = static_cast<int>(data.Exponents[slot]);
        }
    }
    return result;
}

std::size_t CTable::find(std::string_view name, std::uint32_t packs) noexcept {
    return findRow(name, packs);
}

}  // namespace exact
}  // namespace mensor
