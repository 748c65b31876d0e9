// host.cpp: a program that loads a plugin and ends while the threads of the plugin use units. With
// "stop", a static of the program stops them after main(). The library was loaded later, so
// everything that it would destroy at exit is destroyed before that. With "abandon", they are not
// stopped.
//
// usage: host stop|abandon PLUGIN
#include <dlfcn.h>

#include <cstdlib>
#include <iostream>
#include <string>

namespace {

using Function = void (*)();

Function find(void* plugin, const char* name) {
    void* const found = plugin == nullptr ? nullptr : dlsym(plugin, name);
    if (found == nullptr) {
        std::cerr << dlerror() << std::endl;
        std::_Exit(1);
    }
    return reinterpret_cast<Function>(found);
}

struct CHost {
    Function Stop = nullptr;
    ~CHost() {
        if (Stop != nullptr) {
            Stop();
        }
    }
};

CHost host;

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        return 2;
    }
    void* const plugin = dlopen(arguments[2], RTLD_NOW);
    find(plugin, "startWork")();
    if (arguments[1] == std::string("stop")) {
        host.Stop = find(plugin, "stopWork");
    }
    return 0;
}
