// kept.h: what is built once and never destroyed. For the library's own use; not installed.
//
// Threads may still use units while the process ends, and so may the statics of clients. So nothing that
// the library keeps for the process is destroyed at exit. It stays reachable from its static, so that
// leak checkers do not report it.
#ifndef MENSOR_KEPT_H
#define MENSOR_KEPT_H

#include <new>
#include <utility>

namespace mensor {
namespace detail {

/// Holds a `T` in itself, built with the arguments of its constructor.
///
///     static const CKept<CUnitPtr> Minute(CUnitFormat::label(SI::Second()->multiply(60.0), "min"));
///     return *Minute;
template <class T>
class CKept {
public:
    template <class... Arguments>
    explicit CKept(Arguments&&... arguments) {
        ::new (static_cast<void*>(m_Room)) T(std::forward<Arguments>(arguments)...);
    }
    CKept(const CKept&) = delete;
    CKept& operator=(const CKept&) = delete;

    const T& operator*() const {
        return *std::launder(static_cast<const T*>(static_cast<const void*>(m_Room)));
    }
    T& operator*() { return *std::launder(static_cast<T*>(static_cast<void*>(m_Room))); }

private:
    alignas(T) unsigned char m_Room[sizeof(T)];
};

}  // namespace detail
}  // namespace mensor

#endif  // MENSOR_KEPT_H
