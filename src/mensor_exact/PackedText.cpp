#include "mensor_exact/PackedText.h"

namespace mensor::exact {

using namespace packing;

namespace {

// All fragments, one after the other. Pointers to them would have to be relocated at load.
constexpr std::string_view AllFragments =
#define MENSOR_FRAGMENT(text) text
#include "mensor_exact/fragments.def"
    ;

struct CEnds {
    std::uint16_t End[FragmentCount + 1] = {};  // the end of the fragment before
};

constexpr CEnds makeEnds() {
    static_assert(AllFragments.size() < 65536);
    CEnds ends;
    for (std::size_t i = 0; i < FragmentCount; ++i) {
        ends.End[i + 1] = static_cast<std::uint16_t>(ends.End[i] + Fragments[i].size());
    }
    return ends;
}

constexpr CEnds Ends = makeEnds();

}  // namespace

std::string unpacked(const char* text) {
    std::string result;
    for (; *text != '\0'; ++text) {
        const auto byte = static_cast<unsigned char>(*text);
        if (isPlain(byte)) {
            result += *text;
        } else if (byte == Escape) {
            result += *++text;
        } else {
            const std::size_t fragment = fragmentOf(byte);
            result += AllFragments.substr(Ends.End[fragment],
                                          std::size_t{Ends.End[fragment + 1]} - Ends.End[fragment]);
        }
    }
    return result;
}

}  // namespace mensor::exact
