// ShortVector.h: a vector that needs no heap memory for a few elements. Not installed.
#ifndef MENSOR_SHORTVECTOR_H
#define MENSOR_SHORTVECTOR_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <type_traits>

namespace mensor::detail {

template <class Element, std::size_t Few>
class CShortVector {
    static_assert(std::is_trivial_v<Element>, "elements are copied as bytes and never destroyed");

public:
    CShortVector() = default;
    // Empty, with room for `most` elements.
    explicit CShortVector(std::size_t most) : m_Many(most > Few ? new Element[most] : nullptr) {}
    CShortVector(const CShortVector& other) { *this = other; }
    CShortVector& operator=(const CShortVector& other) {
        if (this != &other) {
            m_Many.reset(other.m_Size > Few ? new Element[other.m_Size] : nullptr);
            m_Size = other.m_Size;
            std::copy(other.begin(), other.end(), begin());
        }
        return *this;
    }

    // The caller does not exceed the room given to the constructor.
    void add(const Element& element) { begin()[m_Size++] = element; }
    void endAt(const Element* end) { m_Size = static_cast<std::size_t>(end - begin()); }

    std::size_t size() const { return m_Size; }
    Element* begin() { return m_Many ? m_Many.get() : m_Short.data(); }
    Element* end() { return begin() + m_Size; }
    const Element* begin() const { return m_Many ? m_Many.get() : m_Short.data(); }
    const Element* end() const { return begin() + m_Size; }

private:
    std::array<Element, Few> m_Short;
    std::unique_ptr<Element[]> m_Many;  // used instead of m_Short if not null
    std::size_t m_Size = 0;
};

}  // namespace mensor::detail

#endif  // MENSOR_SHORTVECTOR_H
