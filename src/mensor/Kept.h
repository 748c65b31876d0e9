// Kept.h: objects that are built once and never destroyed. Not installed.
//
// Threads and the statics of clients may still use units while the process ends, so the library
// destroys none of its objects at exit. A kept object lies inside its static, so leak checkers do
// not report it.
#ifndef MENSOR_KEPT_H
#define MENSOR_KEPT_H

#include <new>
#include <utility>

namespace mensor::detail {

/// Holds a `T` that is never destroyed, built with the arguments of the constructor.
///
///     static const CKept<CUnitPtr> Minute(CUnitFormat::label(SI::Second()->multiply(60.0), "min"));
///     return *Minute;
template <class T>
class CKept {
public:
    template <class... Arguments>
    explicit CKept(Arguments&&... arguments) {
        ::new (static_cast<void*>(m_Storage)) T(std::forward<Arguments>(arguments)...);
    }
    CKept(const CKept&) = delete;
    CKept& operator=(const CKept&) = delete;

    const T& operator*() const {
        return *std::launder(static_cast<const T*>(static_cast<const void*>(m_Storage)));
    }
    T& operator*() { return *std::launder(static_cast<T*>(static_cast<void*>(m_Storage))); }

private:
    alignas(T) unsigned char m_Storage[sizeof(T)];
};

}  // namespace mensor::detail

#endif  // MENSOR_KEPT_H
