#include "sample/internal/SampleDeviceBuilder.h"

#include <cerrno>
#include <utility>

#include <fmt/format.h>

namespace sweepwright::sample {

using platform::Result;
using std::chrono::hours;
using std::chrono::seconds;

namespace {

constexpr unsigned kFilesPerFolder = 200;

/// Numbers that look drawn by lot and are always the same for the same seed (splitmix64).
class Lots {
  public:
    explicit Lots(std::string_view seed) {
        for (const char c : seed)
            state_ = (state_ ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
    }

    std::uint64_t next() {
        state_ += 0x9E3779B97F4A7C15U;
        std::uint64_t mixed = state_;
        mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9U;
        mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBU;
        return mixed ^ (mixed >> 31U);
    }

    /// A number from `least` to `most`.
    std::uint64_t between(std::uint64_t least, std::uint64_t most) {
        return least + next() % (most - least + 1);
    }

  private:
    std::uint64_t state_ = 0xCBF29CE484222325U;
};

void replaceIn(std::string& text, std::string_view what, std::string_view with) {
    const std::size_t at = text.find(what);
    if (at != std::string::npos) text.replace(at, what.size(), with);
}

std::string nameOf(std::string_view pattern, unsigned index, Lots& lots) {
    std::string name(pattern);
    replaceIn(name, "{n}", fmt::format("{:04}", index + 1));
    if (name.find("{hash}") != std::string::npos)
        replaceIn(name, "{hash}", fmt::format("{:016x}", lots.next()));
    if (name.find("{uuid}") != std::string::npos)
        replaceIn(name, "{uuid}", sampleUuid(fmt::format("{}{}", index, lots.next())));
    return name;
}

}  // namespace

std::string sampleUuid(std::string_view seed) {
    Lots lots(seed);
    const std::uint64_t high = lots.next();
    const std::uint64_t low = lots.next();
    return fmt::format("{:08X}-{:04X}-4{:03X}-{:X}{:03X}-{:012X}", high >> 32U,
                       (high >> 16U) & 0xFFFFU, high & 0xFFFU, 8 + (low >> 62U),
                       (low >> 48U) & 0xFFFU, low & 0xFFFFFFFFFFFFU);
}

SampleDeviceBuilder::SampleDeviceBuilder(platform::FileMaker& files, unsigned scale,
                                         std::chrono::system_clock::time_point now,
                                         std::stop_token stop)
    : files_(files),
      scale_(scale),
      now_(now),
      stop_(std::move(stop)),
      home_("/var/mobile/Containers/Data/Application/" + sampleUuid("data com.sweepwright.app")) {}

Result<SampleDeviceSummary> SampleDeviceBuilder::build() {
    // As on a device; everything else goes through the link.
    auto done = folder("/private/var");
    if (done) done = layLink("/var", "private/var");
    if (done) done = layPlaces();
    for (const catalog::App& app : catalog::apps()) {
        if (done) done = layApp(app);
    }
    if (!done) return std::unexpected(done.error());
    return summary_;
}

Result<> SampleDeviceBuilder::layPlaces() {
    Result<> done;
    for (const catalog::Heap& heap : catalog::heaps()) {
        if (done) done = layHeap(heap, expanded(heap.folder));
    }
    for (const catalog::Single& single : catalog::singles()) {
        if (!done) break;
        done = laySparse(expanded(single.path), single.bytes, seconds(single.ageSeconds));
        if (!done && done.error().isNameRefused()) done = {};
    }
    for (const catalog::Text& text : catalog::texts()) {
        if (done) done = layText(expanded(text.path), text.content);
    }
    for (const std::string_view path : catalog::emptyFolders()) {
        if (done) done = folder(expanded(path));
    }
    for (const catalog::Link& link : catalog::links()) {
        if (done) done = layLink(expanded(link.path), std::string(link.target));
    }
    return done;
}

Result<> SampleDeviceBuilder::layHeap(const catalog::Heap& heap, const std::string& folder) {
    const unsigned count = heap.files * scale_;
    for (unsigned index = 0; index < count; ++index) {
        // Each file's lot is its own: the first files are the same at every scale.
        Lots lots(fmt::format("{}/{}/{}", folder, heap.name, index));
        const std::string name = nameOf(heap.name, index, lots);
        const unsigned part = index / kFilesPerFolder;
        const std::string path = part == 0 ? fmt::format("{}/{}", folder, name)
                                           : fmt::format("{}/part-{}/{}", folder, part, name);
        const std::uint64_t average = std::uint64_t{heap.averageKiB} * 1024;
        const std::uint64_t bytes = lots.between(average / 4, average * 7 / 4);
        const auto oldest =
            static_cast<std::uint64_t>(seconds(hours(24)).count()) * heap.oldestDays;
        const auto age = static_cast<std::int64_t>(lots.between(3600, oldest));
        const auto laid = laySparse(path, bytes, seconds(age));
        if (!laid) return laid;
    }
    return {};
}

Result<> SampleDeviceBuilder::laySparse(const std::string& path, std::uint64_t bytes, seconds age) {
    auto done = folderAbove(path);
    if (done) done = files_.createSparseFile(path, bytes);
    return done ? finishFile(path, bytes, age) : done;
}

Result<> SampleDeviceBuilder::layText(const std::string& path, std::string_view content) {
    auto done = folderAbove(path);
    if (done) done = files_.createFile(path, content);
    return done ? finishFile(path, content.size(), hours(24 * 30)) : done;
}

Result<> SampleDeviceBuilder::layLink(const std::string& path, const std::string& target) {
    const auto done = folderAbove(path);
    return done ? files_.createSymbolicLink(path, target) : done;
}

Result<> SampleDeviceBuilder::finishFile(const std::string& path, std::uint64_t bytes,
                                         seconds age) {
    if (stop_.stop_requested()) return std::unexpected(platform::errorFromErrno(ECANCELED, path));
    auto done = files_.setModificationDate(path, now_ - age);
    if (!done) return done;
    ++summary_.files;
    summary_.bytes += bytes;
    return done;
}

Result<> SampleDeviceBuilder::folder(const std::string& path) {
    if (folders_.contains(path)) return {};
    auto done = files_.createDirectories(path);
    if (done) folders_.insert(path);
    return done;
}

Result<> SampleDeviceBuilder::folderAbove(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == 0) return {};
    return folder(path.substr(0, slash));
}

std::string SampleDeviceBuilder::expanded(std::string_view path) const {
    std::string text(path);
    replaceIn(text, "{home}", home_);
    replaceIn(text, "{uuid}", sampleUuid(path));
    return text;
}

}  // namespace sweepwright::sample
