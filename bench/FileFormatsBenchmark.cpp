// What it costs to read property lists and pictures, and to store one user default.
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "platform/device/UserDefaults.h"
#include "platform/files/HostFileManager.h"
#include "platform/image/Image.h"
#include "platform/plist/PropertyList.h"

namespace sweepwright::platform {

namespace {

/// A list whose file has about `bytes` bytes: dictionaries of text, data, a number and a date.
PropertyList listOfBytes(std::int64_t bytes) {
    constexpr std::int64_t kEntryBytes = 500;
    PropertyList::Array entries;
    for (std::int64_t i = 0; i < bytes / kEntryBytes; ++i) {
        std::string path = "/var/mobile/Containers/Data/Application/" + std::to_string(i) + "/";
        path.resize(300, 'x');
        entries.emplace_back(PropertyList::Dictionary{
            {"path", path},
            {"token", PropertyList::Data{path.substr(0, 150)}},
            {"bytes", i * 4096},
            {"date", PropertyList::Date(std::chrono::seconds(1'700'000'000 + i))}});
    }
    return entries;
}

void readList(benchmark::State& state, const std::string& file) {
    for (auto _ : state) {
        const auto list = PropertyList::parse(file);
        if (!list) return state.SkipWithError(list.error().description.c_str());
        benchmark::DoNotOptimize(list);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(file.size()) * state.iterations());
}

void readBinaryList(benchmark::State& state) {
    readList(state, listOfBytes(state.range(0)).toBinary());
}

void readXmlList(benchmark::State& state) {
    readList(state, listOfBytes(state.range(0)).toXml());
}

void writeBinaryList(benchmark::State& state) {
    const PropertyList list = listOfBytes(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(list.toBinary());
}

/// User defaults with a full history and as many protected paths as given.
void setUserDefault(benchmark::State& state) {
    const auto folder = std::filesystem::temp_directory_path() / "sweepwright-bench-defaults";
    std::filesystem::create_directories(folder);
    HostFileManager files(DeviceRoot::open(folder.string()).value());
    UserDefaults defaults(files, "/defaults.plist");
    PropertyList::Array paths;
    for (std::int64_t i = 0; i < state.range(0); ++i)
        paths.emplace_back("/var/mobile/Media/kept/" + std::to_string(i));
    bool stored = defaults.set("PathWhitelistPaths", std::move(paths)).has_value();
    stored = stored && defaults.set("Records", listOfBytes(50'000)).has_value();
    std::int64_t count = 0;
    for (auto _ : state)
        stored = defaults.set("cleanCount", ++count).has_value() && stored;
    if (!stored) state.SkipWithError("the user defaults could not be stored");
    std::filesystem::remove_all(folder);
}

/// An icon of 180 by 180 pixels, as one of the device's files or as a standard one.
void readIcon(benchmark::State& state) {
    constexpr std::uint32_t kSide = 180;
    Image icon{kSide, kSide, {}};
    for (std::uint32_t i = 0; i < kSide * kSide; ++i) {
        const std::uint32_t x = i % kSide;
        const std::uint32_t y = i / kSide;
        for (const std::uint32_t value : {x, y, (x * y) >> 6U, x > 160 ? 128U : 255U})
            icon.rgba.push_back(static_cast<std::uint8_t>(value));
    }
    const bool device = state.range(0) != 0;
    const std::string file = (device ? encodeDevicePng(icon) : encodePng(icon)).value();
    for (auto _ : state)
        benchmark::DoNotOptimize(decode(file));
}

}  // namespace

BENCHMARK(readBinaryList)->Arg(1'000'000)->Arg(10'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(readXmlList)->Arg(1'000'000)->Arg(10'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(writeBinaryList)->Arg(1'000'000)->Arg(10'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(setUserDefault)->Arg(30)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(readIcon)->ArgName("device")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

}  // namespace sweepwright::platform
