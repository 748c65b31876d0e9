#include "mensor/failure_report.h"

#include <dlfcn.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>

namespace mensor {
namespace detail {

#ifdef MENSOR_LOG4CPLUS_SONAME

namespace {

// Writes the path of the module to `path`, which has room for PATH_MAX bytes. The module is looked for
// beside the file of this library, wherever links to it are.
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

// Whether log4cplus waits for its initialisers. In a program that links both libraries this one may be
// initialised first; then nobody can have configured log4cplus, and even dlopen() with RTLD_NOLOAD would
// initialise it. A constant std::string of log4cplus tells: until then, its bytes are zero. Where the
// constant is not found, log4cplus was loaded apart from this library, and so is initialised.
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

}  // namespace detail
}  // namespace mensor
