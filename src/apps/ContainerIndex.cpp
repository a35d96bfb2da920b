#include "apps/ContainerIndex.h"

#include "platform/plist/PropertyList.h"

namespace sweepwright {

using platform::joinPath;
using platform::PropertyList;

namespace {

platform::Result<std::string> readMetadata(platform::FileManager& files,
                                           const std::string& container) {
    return files.readFile(joinPath(container, ".com.apple.mobile_container_manager.metadata.plist"),
                          PropertyList::Limits{}.bytes);
}

std::optional<std::string> identifierByMetadata(const platform::Result<std::string>& bytes) {
    if (!bytes) return std::nullopt;
    const auto list = PropertyList::parse(*bytes);
    if (!list || list->dictionary() == nullptr) return std::nullopt;
    const PropertyList* identifier = list->dictionary()->find("MCMMetadataIdentifier");
    if (identifier == nullptr || identifier->string() == nullptr || identifier->string()->empty())
        return std::nullopt;
    return *identifier->string();
}

}  // namespace

std::string containerIdentifier(platform::FileManager& files, const std::string& container) {
    return identifierByMetadata(readMetadata(files, container))
        .value_or(std::string(platform::lastPathComponent(container)));
}

platform::Result<std::string> ownerOfContainer(platform::FileManager& files,
                                               const std::string& container) {
    auto bytes = readMetadata(files, container);
    // What is said to be absent is looked for once more.
    if (!bytes && bytes.error().isNotFound()) bytes = readMetadata(files, container);
    if (!bytes && !bytes.error().isNotFound()) return std::unexpected(bytes.error());
    return identifierByMetadata(bytes).value_or(
        std::string(platform::lastPathComponent(container)));
}

std::optional<std::string> ContainerIndex::find(const std::string& identifier) {
    const std::lock_guard lock(mutex_);
    const auto known = paths_.find(identifier);
    if (known != paths_.end() && files_.isDirectory(known->second) &&
        containerIdentifier(files_, known->second) == identifier)
        return known->second;
    readAll();
    const auto found = paths_.find(identifier);
    if (found == paths_.end()) return std::nullopt;
    return found->second;
}

void ContainerIndex::readAll() {
    paths_.clear();
    const std::string containers(kDataContainers);
    const auto names = files_.contentsOfDirectory(containers);
    if (!names) return;
    for (const std::string& name : *names) {
        const std::string path = joinPath(containers, name);
        if (files_.isDirectory(path)) paths_.emplace(containerIdentifier(files_, path), path);
    }
}

}  // namespace sweepwright
