// Any bytes as an app's Info.plist and as a container's metadata: what is taken from them is text,
// and no file keeps another app from being found.
#include <string>

#include "apps/BundleIndex.h"
#include "apps/ContainerIndex.h"
#include "fuzz/MemoryFiles.h"
#include "fuzz/Target.h"
#include "platform/plist/PropertyList.h"
#include "platform/text/Utf8.h"

namespace {

using namespace sweepwright;
using fuzz::require;
using platform::joinPath;
using platform::PropertyList;

constexpr std::string_view kBundles = "/var/containers/Bundle/Application";
constexpr std::string_view kMetadata = "/.com.apple.mobile_container_manager.metadata.plist";
constexpr std::string_view kHonest = "honest.app.of.another";
const std::string kBundle = joinPath(kBundles, "A/Strange.app");
const std::string kContainer = joinPath(kDataContainers, "AAAA");

bool isText(const std::optional<std::string>& text) {
    return !text || (!text->empty() && platform::isUtf8(*text) && !text->contains('\0'));
}

/// A list that names `identifier` under `key`.
std::string honest(std::string_view key) {
    return PropertyList(PropertyList::Dictionary{{std::string(key), kHonest}}).toBinary();
}

bool sameInfo(const BundleInfo& one, const BundleInfo& two) {
    return one.path == two.path && one.identifier == two.identifier &&
           one.displayName == two.displayName && one.name == two.name &&
           one.iconFile == two.iconFile && one.oldIconFile == two.oldIconFile;
}

void checkBundle(fuzz::MemoryFiles& files, std::string_view bytes) {
    files.put(kBundle + "/Info.plist", bytes);
    files.put(joinPath(kBundles, "B/Honest.app/Info.plist"), honest("CFBundleIdentifier"));
    const auto info = readBundleInfo(files, kBundle);
    const BundleIndex index(files);
    const auto& others = index.find(std::string(kHonest));
    require(!others.empty(), "another app is found");
    if (!info) return;
    for (const auto& text : {info->identifier, info->displayName, info->name, info->iconFile,
                             info->oldIconFile, info->iconName()})
        require(isText(text), "what an Info.plist says is text");
    if (info->identifier) {
        const auto& found = index.find(*info->identifier);
        require(!found.empty() && sameInfo(found.front(), *info), "a bundle is found by its name");
    }
    // The same list in the other writing says the same.
    const auto list = PropertyList::parse(bytes);
    require(list.has_value(), "what was read can be read");
    files.put(kBundle + "/Info.plist", list->toBinary());
    const auto again = readBundleInfo(files, kBundle);
    require(again && sameInfo(*again, *info), "an Info.plist that is written again says the same");
}

void checkContainer(fuzz::MemoryFiles& files, std::string_view bytes) {
    files.put(kContainer + std::string(kMetadata), bytes);
    const std::string other = joinPath(kDataContainers, "BBBB");
    files.put(other + std::string(kMetadata), honest("MCMMetadataIdentifier"));
    const std::string identifier = containerIdentifier(files, kContainer);
    require(isText(identifier), "a container's identifier is text");
    ContainerIndex index(files);
    require(index.find(identifier) == kContainer, "a container is found by its identifier");
    require(index.find(std::string(kHonest)) == (identifier == kHonest ? kContainer : other),
            "another container is found");
    // A container that goes is not found any more, though it was remembered.
    files.clear();
    require(!index.find(identifier), "what is gone is not found");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static fuzz::MemoryFiles files;
    const std::string_view bytes = fuzz::asText(data, size);
    files.clear();
    checkBundle(files, bytes);
    files.clear();
    checkContainer(files, bytes);
    return 0;
}
