// identity.h: quick access to the identity converter. Not installed.
//
// CConverter::identity() returns a copy and so counts an owner. These functions return a reference.
#ifndef MENSOR_IDENTITY_H
#define MENSOR_IDENTITY_H

#include <atomic>

#include "mensor/Converter.h"

namespace mensor::detail {

extern std::atomic<const CConverterPtr*> createdIdentity;
const CConverterPtr& createIdentity();

// The identity converter of the process. Created on first use and never destroyed.
inline const CConverterPtr& theIdentity() {
    const CConverterPtr* const created = createdIdentity.load(std::memory_order_acquire);
    return created != nullptr ? *created : createIdentity();
}

}  // namespace mensor::detail

#endif  // MENSOR_IDENTITY_H
