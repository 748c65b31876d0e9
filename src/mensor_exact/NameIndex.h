// NameIndex.h: a constant hash table of names, computed by the compiler. For mensor's own libraries;
// not installed.
#ifndef MENSOR_EXACT_NAMEINDEX_H
#define MENSOR_EXACT_NAMEINDEX_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace mensor::exact {

/// The same as ==, but with fewer steps in a constant expression.
constexpr bool isEqual(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (a[i] != b[i]) {
            return false;
        }
    }
    return true;
}

/// Returns the hash FNV-1a of a name. If `hash` is that of another text, returns the hash of that
/// text followed by the name.
constexpr std::uint32_t hashOfName(std::string_view name, std::uint32_t hash = 2166136261U) {
    for (const char c : name) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
    }
    return hash;
}

/// A power of two, so that at most two thirds of the places have a row.
constexpr std::size_t placesFor(std::size_t rows) {
    std::size_t places = 1;
    while (2 * places < 3 * rows) {
        places *= 2;
    }
    return places;
}

/// Finds rows of a table by name, with linear probing. If several rows have one name, the first row is
/// found first. Fewer places need less memory and more time.
template <std::size_t Rows, std::size_t Places = placesFor(Rows)>
class CNameIndex {
    static_assert(Places > Rows, "a name that no row has needs an empty place");

public:
    static constexpr std::size_t None = static_cast<std::size_t>(-1);

    /// `nameOf(row)` returns the name of a row.
    template <class NameOf>
    explicit constexpr CNameIndex(const NameOf& nameOf) {
        static_assert(Rows < 65535);
        for (std::size_t row = 0; row < Rows; ++row) {
            std::size_t place = placeOf(nameOf(row));
            while (m_Places[place] != 0) {
                place = (place + 1) % Places;
            }
            m_Places[place] = static_cast<std::uint16_t>(row + 1);
        }
    }

    /// Returns the row with this name, or None. `fits(row)` returns true if the row has the name.
    template <class Fits>
    constexpr std::size_t find(std::string_view name, const Fits& fits) const {
        for (std::size_t place = placeOf(name); m_Places[place] != 0;
             place = (place + 1) % Places) {
            const std::size_t row = m_Places[place] - std::size_t{1};
            if (fits(row)) {
                return row;
            }
        }
        return None;
    }

    /// The hash of a name, less than the number of places.
    static constexpr std::size_t placeOf(std::string_view name) {
        const std::uint32_t hash = hashOfName(name);
        return (hash ^ hash >> 15) % Places;
    }

private:
    std::uint16_t m_Places[Places] = {};  // a row plus 1; 0 if the place is empty
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_NAMEINDEX_H
