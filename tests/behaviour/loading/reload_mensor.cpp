// reload_mensor MODULE LIBRARY...: loads the libraries and the module, lets the module print all
// units, closes everything and repeats this once. Between the two prints is the line "unloaded"
// with the number of libraries that are still loaded.
#include <dlfcn.h>

#include <algorithm>
#include <iostream>
#include <vector>

namespace {

void loadAndPrint(const std::vector<const char*>& files) {
    std::vector<void*> handles;
    for (const char* file : files) {
        handles.push_back(dlopen(file, RTLD_NOW));
        if (handles.back() == nullptr) {
            std::cout << dlerror() << std::endl;
            return;
        }
    }
    using PrintUnits = void (*)();
    reinterpret_cast<PrintUnits>(dlsym(handles.back(), "printUnits"))();
    for (; !handles.empty(); handles.pop_back()) {
        dlclose(handles.back());
    }
}

bool isThere(const char* file) { return dlopen(file, RTLD_NOW | RTLD_NOLOAD) != nullptr; }

}  // namespace

int main(int argc, char** argv) {
    const std::vector<const char*> libraries(argv + 2, argv + argc);
    std::vector<const char*> files = libraries;
    files.push_back(argv[1]);
    loadAndPrint(files);
    std::cout << "unloaded, but there: "
              << std::count_if(libraries.begin(), libraries.end(), isThere) << "\n";
    loadAndPrint(files);
}
