// Runs a target over files where no fuzzer is linked: seeds, and inputs that once broke a promise.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz/Target.h"

namespace {

/// The files among `paths` and in the folders among them.
std::vector<std::filesystem::path> filesOf(const std::vector<std::string>& paths) {
    std::vector<std::filesystem::path> files;
    for (const std::string& path : paths) {
        if (!std::filesystem::is_directory(path)) {
            files.emplace_back(path);
            continue;
        }
        for (const auto& entry : std::filesystem::directory_iterator(path))
            files.push_back(entry.path());
    }
    std::ranges::sort(files);
    return files;
}

}  // namespace

/// For targets that change inputs in a way of their own: without a fuzzer nothing is changed.
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* /*data*/, std::size_t size,
                                        std::size_t /*maxSize*/) {
    return size;
}

int main(int argc, char** argv) {
    const auto files = filesOf({argv + 1, argv + argc});
    if (files.empty()) {
        std::fputs("no inputs: name files, or folders of files\n", stderr);
        return 2;
    }
    for (const auto& file : files) {
        // Before the run, so that a broken promise is told with its input.
        std::printf("%s\n", file.c_str());
        std::fflush(stdout);
        std::ifstream stream(file, std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
        if (!stream) return 2;
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    std::printf("%zu inputs\n", files.size());
    return 0;
}
