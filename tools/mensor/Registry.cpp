#include "Registry.h"

#include <dlfcn.h>

#include <stdexcept>

namespace {

// The module is in a folder next to libmensor_exact, which this program links.
std::string modulePath() {
    Dl_info library;
    const auto* const function = reinterpret_cast<const void*>(&mensor::exact::allPacks);
    if (dladdr(function, &library) == 0) {
        return "registry.so";
    }
    const std::string path = library.dli_fname;
    return path.substr(0, path.rfind('/') + 1) + "mensor/registry.so";
}

CRegistry& load() {
    void* const module = dlopen(modulePath().c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const function = module == nullptr ? nullptr : dlsym(module, GetRegistryName);
    if (function == nullptr) {
        throw std::runtime_error(std::string("cannot ask the library's registry: ") + dlerror());
    }
    return *reinterpret_cast<GetRegistry*>(function)();
}

}  // namespace

CRegistry& registry() {
    static CRegistry& Loaded = load();
    return Loaded;
}
