// replay_main.cpp: runs a fuzzer on the inputs in files, and in all files of folders. For builds
// without libFuzzer.
//
// usage: <What>_fuzz [--from-tables] FILE_OR_FOLDER...
//
// The caches of the library are on until its tables are handed out. With --from-tables they are off
// from the first input.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "mensor/Unit.h"
#include "property.h"
#include "support/invariants.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::string contents(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

}  // namespace

int main(int count, char** arguments) try {
    namespace fs = std::filesystem;
    std::vector<fs::path> files;
    for (int i = 1; i < count; ++i) {
        if (std::string(arguments[i]) == "--from-tables") {
            mensor::CUnit::instances();
        } else if (fs::is_directory(arguments[i])) {
            files.insert(files.end(), fs::directory_iterator(arguments[i]),
                         fs::directory_iterator());
        } else {
            files.emplace_back(arguments[i]);
        }
    }
    std::sort(files.begin(), files.end());  // the same order on every platform
    for (const fs::path& file : files) {
        const std::string input = contents(file);
        const std::vector<std::uint8_t> bytes(input.begin(), input.end());
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    const std::string broken = mensor::test::brokenInvariant();
    if (!broken.empty()) {
        mensor::fuzz::fail("all inputs", broken);
    }
    std::printf("%zu inputs\n", files.size());
    return files.empty() ? 1 : 0;
} catch (const std::exception& e) {
    std::fprintf(stderr, "%s\n", e.what());
    return 1;
}
