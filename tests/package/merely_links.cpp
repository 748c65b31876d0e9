// Uses nothing of mensor, but is linked with it: loading the library must be silent.
#include <dlfcn.h>

int main() {
    // Proof that the library was loaded: this only finds what already is.
    return dlopen("libmensor.so.1", RTLD_NOW | RTLD_NOLOAD) != nullptr ? 0 : 1;
}
