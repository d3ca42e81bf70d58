# Not run here: no Conan and no registry to fetch from.  Written for Conan 2; from this folder:
#   conan create .
import os

from conan import ConanFile
from conan.tools.build import check_min_cppstd
from conan.tools.cmake import CMake, CMakeToolchain, cmake_layout
from conan.tools.files import copy


class TarnutilRecipe(ConanFile):
    name = "tarnutil"
    version = "1.0.0"
    description = "Values, records, calendars and option valuation for trading clients"
    license = "MIT"
    package_type = "library"
    settings = "os", "compiler", "build_type", "arch"
    options = {"shared": [True, False], "fPIC": [True, False]}
    default_options = {"shared": False, "fPIC": True}
    implements = ["auto_shared_fpic"]

    def export_sources(self):
        root = os.path.join(self.recipe_folder, "..", "..")
        for pattern in ("CMakeLists.txt", "LICENSE", "*.h", "*.cpp", "cmake/*", "tools/debug/*"):
            copy(self, pattern, root, self.export_sources_folder, excludes=("build/*", "tests/*"))

    def validate(self):
        check_min_cppstd(self, 20)

    def layout(self):
        cmake_layout(self)

    def generate(self):
        toolchain = CMakeToolchain(self)
        toolchain.cache_variables["TARN_TESTS"] = False
        toolchain.cache_variables["TARN_EXAMPLES"] = False
        toolchain.generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        copy(self, "LICENSE", self.source_folder, os.path.join(self.package_folder, "licenses"))
        CMake(self).install()

    def package_info(self):
        self.cpp_info.libs = ["tarnutil"]
        self.cpp_info.includedirs = ["include/tarnutil"]
        if self.options.shared:
            self.cpp_info.defines = ["TARN_SHARED"]
        if self.settings.os == "Linux":
            self.cpp_info.system_libs = ["dl"]
