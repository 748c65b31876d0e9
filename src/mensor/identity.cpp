#include "mensor/identity.h"

#include <memory>

#include "mensor/Kept.h"

namespace mensor::detail {

std::atomic<const CConverterPtr*> createdIdentity{nullptr};

const CConverterPtr& createIdentity() {
    static const CKept<CConverterPtr> Identity(std::make_shared<CIdentity>());
    createdIdentity.store(&*Identity, std::memory_order_release);
    return *Identity;
}

}  // namespace mensor::detail
