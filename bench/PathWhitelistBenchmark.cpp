// What a protection query costs, by the number of protected paths.
#include <cstdint>
#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>

#include "platform/device/UserDefaults.h"
#include "platform/files/HostFileManager.h"
#include "protection/PathWhitelistManager.h"

namespace sweepwright {

namespace {

/// A whitelist of `count` user paths in a folder of its own.
class Whitelist {
  public:
    explicit Whitelist(std::int64_t count)
        : folder_(std::filesystem::temp_directory_path() / "sweepwright-bench-whitelist"),
          files_(open(folder_)),
          defaults_(files_, "/defaults.plist") {
        platform::PropertyList::Array paths;
        for (std::int64_t i = 0; i < count; ++i)
            paths.emplace_back("/var/mobile/Media/kept/" + std::to_string(i * 7919 % 99991));
        stored_ = defaults_.set("PathWhitelistPaths", std::move(paths)).has_value();
    }
    ~Whitelist() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    Whitelist(const Whitelist&) = delete;
    Whitelist& operator=(const Whitelist&) = delete;

    [[nodiscard]] bool isStored() const { return stored_; }
    platform::UserDefaults& defaults() { return defaults_; }

  private:
    static std::shared_ptr<const platform::DeviceRoot> open(const std::filesystem::path& folder) {
        std::filesystem::create_directories(folder);
        return platform::DeviceRoot::open(folder.string()).value();
    }

    std::filesystem::path folder_;
    platform::HostFileManager files_;
    platform::UserDefaults defaults_;
    bool stored_ = false;
};

void unprotectedQuery(benchmark::State& state) {
    Whitelist whitelist(state.range(0));
    if (!whitelist.isStored()) return state.SkipWithError("the list could not be stored");
    const PathWhitelistManager manager(whitelist.defaults());
    const std::string path = "/var/mobile/Containers/Data/Application/A/Library/Caches/x/y.bin";
    for (auto _ : state)
        benchmark::DoNotOptimize(manager.isPathInWhitelist(path));
}

}  // namespace

BENCHMARK(unprotectedQuery)->Arg(0)->Arg(30)->Arg(1000);

}  // namespace sweepwright
