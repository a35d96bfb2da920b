#include "support/TemporaryDevice.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace sweepwright::test {

namespace fs = std::filesystem;

namespace {

/// Memory where there is enough of it, which spares the disk tens of thousands of small files; a
/// TMPDIR of the environment goes before.
fs::path placeForFolders() {
    constexpr unsigned kEnoughFiles = 200'000;
    const char* memory = "/dev/shm";
    struct statvfs totals{};
    const bool usable = std::getenv("TMPDIR") == nullptr && access(memory, W_OK | X_OK) == 0 &&
                        statvfs(memory, &totals) == 0 && totals.f_favail >= kEnoughFiles;
    return usable ? fs::path(memory) : fs::temp_directory_path();
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
    std::string pattern = (placeForFolders() / "sweepwright-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) std::abort();
    path_ = fs::canonical(pattern).string();
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

TemporaryDevice::TemporaryDevice(platform::Calls calls)
    : files_(platform::DeviceRoot::open(folder_.path()).value(), calls) {}

void TemporaryDevice::file(const std::string& path, std::uint64_t bytes) {
    fileWith(path, "");
    fs::resize_file(host(path), bytes);
}

void TemporaryDevice::fileWith(const std::string& path, std::string_view content) {
    const fs::path at = host(path);
    fs::create_directories(at.parent_path());
    std::ofstream out(at, std::ios::binary);
    out.write(content.data(), static_cast<std::streamsize>(content.size()));
    out.close();
    EXPECT_TRUE(out.good()) << at;
}

void TemporaryDevice::folder(const std::string& path) {
    fs::create_directories(host(path));
}

void TemporaryDevice::link(const std::string& path, const std::string& target) {
    const fs::path at = host(path);
    fs::create_directories(at.parent_path());
    fs::create_symlink(target, at);
}

void TemporaryDevice::hardLink(const std::string& path, const std::string& existing) {
    const fs::path at = host(path);
    fs::create_directories(at.parent_path());
    fs::create_hard_link(host(existing), at);
}

void TemporaryDevice::fifo(const std::string& path) {
    const fs::path at = host(path);
    fs::create_directories(at.parent_path());
    EXPECT_EQ(mkfifo(at.c_str(), 0600), 0) << at;
}

void TemporaryDevice::age(const std::string& path, double seconds) {
    const auto past = std::chrono::duration_cast<std::chrono::system_clock::duration>(
        std::chrono::duration<double>(seconds));
    const auto set = files_.setModificationDate(path, std::chrono::system_clock::now() - past);
    EXPECT_TRUE(set.has_value()) << set.error().description;
}

bool TemporaryDevice::exists(const std::string& path) const {
    return fs::exists(fs::symlink_status(host(path)));
}

std::vector<std::string> TemporaryDevice::entriesBeneath(const std::string& path) const {
    std::vector<std::string> paths;
    for (const auto& entry : fs::recursive_directory_iterator(host(path)))
        paths.push_back(entry.path().string().substr(root().size()));
    std::ranges::sort(paths);
    return paths;
}

std::string TemporaryDevice::content(const std::string& path) const {
    std::ifstream in(host(path), std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

}  // namespace sweepwright::test
