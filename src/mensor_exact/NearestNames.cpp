#include "mensor_exact/NearestNames.h"

#include <algorithm>
#include <tuple>

#include "mensor_exact/Table.h"
#include "mensor_exact/utf8.h"

namespace mensor::exact {

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

// A smaller number is better.
bool isNearer(const CNearestNames::CNear& a, const CNearestNames::CNear& b) {
    return std::tie(a.Distance, a.IsRare, a.ExactDistance, a.Name) <
           std::tie(b.Distance, b.IsRare, b.ExactDistance, b.Name);
}

}  // namespace

bool hasRarePrefix(std::string_view name) {
    const std::size_t row = CTable::find(name, CTable::AllPacks);
    if (row == CTable::None) {
        return false;
    }
    const std::string text = CTable::text(row);
    for (const std::string_view factor :
         {"10^24 ", "10^21 ", "10^18 ", "10^15 ", "10^-15 ", "10^-18 ", "10^-21 ", "10^-24 "}) {
        if (text.compare(0, factor.size(), factor) == 0) {
            return true;
        }
    }
    return false;
}

CNearestNames::CNearestNames(std::string_view unknown) {
    m_HasNone = !read(unknown, m_Unknown) || m_Unknown.Size > Longest;
    // One change turns a name of one letter into any other, so the edit distance says nothing. Such
    // a name is near only if it differs in case.
    m_Farthest = m_Unknown.Size < 2 ? 0 : m_Unknown.Size < 5 ? 1 : MostEdits;
}

// Splits the text into code points. Returns false if the text is too long.
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
        letters.Set |= letterBit(small);
        ++letters.Size;
    }
    return true;
}

// Computes the distance of a name, ignoring case. Returns false if the name is not near.
bool CNearestNames::measure(std::string_view known, CLetters& letters,
                            std::size_t& distance) const {
    if (known.empty() || !mayBeNear(known) || !read(known, letters) ||
        letters.Size > m_Unknown.Size + m_Farthest || m_Unknown.Size > letters.Size + m_Farthest) {
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
    constexpr std::size_t Most = 12;
    CLetters letters;
    std::size_t distance = 0;
    if (!measure(known, letters, distance)) {
        return;
    }
    m_Found.push_back({std::string(known), distance,
                       editDistance(m_Unknown.Exact, m_Unknown.Size, letters.Exact, letters.Size),
                       hasRarePrefix(known)});
    for (std::size_t i = m_Found.size() - 1; i > 0 && isNearer(m_Found[i], m_Found[i - 1]); --i) {
        std::swap(m_Found[i], m_Found[i - 1]);
    }
    if (m_Found.size() > Most) {
        m_Found.pop_back();
    }
}

}  // namespace mensor::exact
