#include "mensor/FailureReport.h"

#include <dlfcn.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>

namespace mensor::detail {

#ifdef MENSOR_LOG4CPLUS_SONAME

namespace {

// Writes the path of the module to `path`, which has room for PATH_MAX bytes. The module is in a
// folder next to the file of this library; symbolic links to the library are followed first.
bool findModule(char* path) {
    Dl_info library;
    if (dladdr(reinterpret_cast<const void*>(&reportFailure), &library) == 0 ||
        realpath(library.dli_fname, path) == nullptr) {
        return false;
    }
    char* const name = std::strrchr(path, '/') + 1;
    if (static_cast<std::size_t>(name - path) + sizeof ModuleFile > PATH_MAX) {
        return false;
    }
    std::memcpy(name, ModuleFile, sizeof ModuleFile);
    return true;
}

// Returns whether log4cplus is in the process, but its static initialisers have not run. A program
// that links both libraries may initialise this one first. Then log4cplus cannot be configured yet,
// and even dlopen() with RTLD_NOLOAD would initialise it. The bytes of a constant std::string of
// log4cplus are zero until it is initialised. If the constant is not found, log4cplus was loaded
// separately and so is initialised.
bool isNotInitialised() {
    const void* const empty = dlsym(RTLD_DEFAULT, "_ZN9log4cplus8internal9empty_strB5cxx11E");
    return empty != nullptr && static_cast<const std::string*>(empty)->data() == nullptr;
}

}  // namespace

void reportFailure(const FailureReport& report) noexcept {
    if (isNotInitialised()) {
        return;
    }
    void* const log4cplus = dlopen(MENSOR_LOG4CPLUS_SONAME, RTLD_LAZY | RTLD_NOLOAD);
    if (log4cplus == nullptr) {
        return;
    }
    char path[PATH_MAX];
    void* const module = findModule(path) ? dlopen(path, RTLD_NOW | RTLD_LOCAL) : nullptr;
    if (module != nullptr) {
        if (void* const function = dlsym(module, ModuleFunction)) {
            reinterpret_cast<LogFailure*>(function)(report);
        }
        dlclose(module);
    }
    dlclose(log4cplus);
}

#else  // built without the module

void reportFailure(const FailureReport&) noexcept {}

#endif

}  // namespace mensor::detail
