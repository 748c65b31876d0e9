# 32-bit ARM, hard-float, with Debian's cross compiler. Libraries come from Debian's multiarch
# folders (dpkg --add-architecture armhf); programs run here under qemu-user, which finds the
# loader and the libraries in those folders by itself. There is no -L, since it would add a
# second C library, that of the cross compiler.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)

set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm)

# Switches off notes about a change of GCC 7 in the passing of arguments.
set(CMAKE_CXX_FLAGS_INIT "-Wno-psabi")

set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/arm-linux-gnueabihf/pkgconfig:/usr/share/pkgconfig)
