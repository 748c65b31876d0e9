#include "mensor_exact/NearestNames.h"

#include <algorithm>
#include <bitset>
#include <tuple>

#include "mensor_exact/Table.h"
#include "mensor_exact/Utf8.h"

namespace mensor {
namespace exact {

namespace {

// The edit distance of two names of `aSize` and `bSize` letters.
template <class Letters>
std::size_t editDistance(const Letters& a, std::size_t aSize, const Letters& b, std::size_t bSize) {
    std::array<std::uint8_t, std::tuple_size_v<Letters> + 1> rows[3];
    auto* before = &rows[0];
    auto* last = &rows[1];
    auto* row = &rows[2];
    for (std::size_t j = 0; j <= bSize; ++j) {
        (*last)[j] = static_cast<std::uint8_t>(j);
    }
    for (std::size_t i = 1; i <= aSize; ++i) {
        (*row)[0] = static_cast<std::uint8_t>(i);
        for (std::size_t j = 1; j <= bSize; ++j) {
            int least = (*last)[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            least = std::min({least, (*last)[j] + 1, (*row)[j - 1] + 1});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
                least = std::min(least, (*before)[j - 2] + 1);
            }
            (*row)[j] = static_cast<std::uint8_t>(least);
        }
        std::swap(before, last);
        std::swap(last, row);
    }
    return (*last)[bSize];
}

// Whether the name is that of a unit with one of the prefixes beyond tera and pico.
bool isRare(std::string_view name) {
    const std::size_t row = CTable::find(name, CTable::AllPacks);
    if (row == CTable::None) {
        return false;
    }
    const std::string_view text = CTable::definition(row).Text;
    for (const std::string_view factor :
         {"10^24 ", "10^21 ", "10^18 ", "10^15 ", "10^-15 ", "10^-18 ", "10^-21 ", "10^-24 "}) {
        if (text.substr(0, factor.size()) == factor) {
            return true;
        }
    }
    return false;
}

std::size_t countBits(std::uint64_t bits) { return std::bitset<64>(bits).count(); }

}  // namespace

CNearestNames::CNearestNames(std::string_view unknown) {
    m_HasNone = !read(unknown, m_Unknown) || m_Unknown.Size > Longest;
    // A name of one letter is one edit away from every other: only its case tells anything.
    m_Farthest = m_Unknown.Size < 2 ? 0 : m_Unknown.Size < 5 ? 1 : MostEdits;
}

// Returns false where the text is too long to be near.
bool CNearestNames::read(std::string_view text, CLetters& letters) {
    std::size_t length = 0;
    for (std::size_t at = 0; at < text.size(); at += length) {
        if (letters.Size == letters.Exact.size()) {
            return false;
        }
        const char32_t c = decode(text.substr(at), length);
        const char32_t small = c >= U'A' && c <= U'Z' ? c + (U'a' - U'A') : c;
        letters.Exact[letters.Size] = c;
        letters.Small[letters.Size] = small;
        letters.Set |= std::uint64_t{1} << (small % 64);
        ++letters.Size;
    }
    return true;
}

// Whether a name cannot be near, by its length and, if it is ASCII, its letters. Most names end here.
bool CNearestNames::isFar(std::string_view known) const {
    if (known.size() + m_Farthest < m_Unknown.Size) {
        return true;
    }
    std::uint64_t set = 0;
    for (const char c : known) {
        if ((c & 0x80) != 0) {
            return false;
        }
        const char small = c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
        set |= std::uint64_t{1} << (static_cast<unsigned char>(small) % 64);
    }
    return known.size() > m_Unknown.Size + m_Farthest ||
           countBits(set & ~m_Unknown.Set) > m_Farthest ||
           countBits(m_Unknown.Set & ~set) > m_Farthest;
}

// Finds out how far a name is, whatever the case. Returns false where it is not near.
bool CNearestNames::measure(std::string_view known, CLetters& letters,
                            std::size_t& distance) const {
    if (m_HasNone || known.empty() || isFar(known) || !read(known, letters) ||
        letters.Size > m_Unknown.Size + m_Farthest || m_Unknown.Size > letters.Size + m_Farthest) {
        return false;
    }
    // One edit adds at most one letter and takes at most one away.
    if (countBits(letters.Set & ~m_Unknown.Set) > m_Farthest ||
        countBits(m_Unknown.Set & ~letters.Set) > m_Farthest) {
        return false;
    }
    distance = editDistance(m_Unknown.Small, m_Unknown.Size, letters.Small, letters.Size);
    return distance <= m_Farthest;
}

bool CNearestNames::isNear(std::string_view known) const {
    CLetters letters;
    std::size_t distance = 0;
    return measure(known, letters, distance);
}

void CNearestNames::add(std::string_view known) {
    CLetters letters;
    std::size_t distance = 0;
    if (measure(known, letters, distance)) {
        m_Found.push_back(
            {std::string(known), distance,
             editDistance(m_Unknown.Exact, m_Unknown.Size, letters.Exact, letters.Size),
             isRare(known)});
    }
}

std::vector<CNearestNames::CNear> CNearestNames::best() const {
    constexpr std::size_t Most = 12;
    std::vector<CNear> nearest;
    nearest.reserve(m_Found.size());
    for (const CNear& found : m_Found) {
        nearest.push_back(found);
    }
    std::sort(nearest.begin(), nearest.end(), [](const CNear& a, const CNear& b) {
        return std::tie(a.Distance, a.IsRare, a.ExactDistance, a.Name) <
               std::tie(b.Distance, b.IsRare, b.ExactDistance, b.Name);
    });
    if (nearest.size() > Most) {
        nearest.resize(Most);
    }
    return nearest;
}

}  // namespace exact
}  // namespace mensor
