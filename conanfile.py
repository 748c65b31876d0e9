# To take the dependencies from Conan: run "conan install . --build=missing", then configure with the
# toolchain file that it writes.
import re

from conan import ConanFile
from conan.tools.cmake import CMake, cmake_layout
from conan.tools.files import load


class Mensor(ConanFile):
    name = "mensor"
    description = "Physical units of measure at run time"
    license = "MIT"
    settings = "os", "compiler", "build_type", "arch"
    options = {"string": ["own", "tinyutf8"]}  # the class that string_t is; part of the ABI
    default_options = {"string": "own"}
    generators = "CMakeDeps", "CMakeToolchain"
    exports = "CMakeLists.txt"  # which has the version
    exports_sources = ("CMakeLists.txt", "LICENSE", "cmake/*", "docs/man/*", "packaging/*", "src/*",
                       "tools/*")

    def set_version(self):
        self.version = re.search(r"VERSION ([0-9.]+)\n", load(self, "CMakeLists.txt")).group(1)

    def requirements(self):
        self.requires("boost/[>=1.74 <2]", options={"header_only": True})
        self.requires("log4cplus/[>=2.0 <3]")
        if self.options.string == "tinyutf8":
            self.requires("tiny-utf8/[>=4.4]")

    def layout(self):
        cmake_layout(self)

    def build(self):
        cmake = CMake(self)
        cmake.configure(variables={"MENSOR_TESTS": "OFF", "MENSOR_EXAMPLES": "OFF",
                                   "MENSOR_STRING": str(self.options.string)})
        cmake.build()

    def package(self):
        CMake(self).install()

    def package_info(self):
        # The package configuration that mensor installs says which class string_t is. One that
        # Conan generates would not.
        self.cpp_info.set_property("cmake_find_mode", "none")
        self.cpp_info.builddirs.append("lib/cmake/mensor")
