#include "engine/FileVisitor.h"

#include <algorithm>

#include "platform/files/EntryNames.h"

namespace sweepwright {

using platform::FileType;
using platform::LastLink;

FileVisitor::FileVisitor(platform::FileManager& files, Visit visit,
                         platform::UnreadableHandler onUnreadable, DepthLimit onDepthLimit)
    : files_(files),
      visit_(std::move(visit)),
      onUnreadable_(std::move(onUnreadable)),
      onDepthLimit_(std::move(onDepthLimit)) {}

bool FileVisitor::walk(const std::string& directory, int maxDepth) {
    if (maxDepth <= 0) {
        if (onDepthLimit_) onDepthLimit_(directory);
        return true;
    }
    const auto attributes = files_.attributes(directory, LastLink::Follow);
    if (!attributes) {
        platform::tellUnreadable(files_, directory, attributes.error(), onUnreadable_);
        return true;
    }
    const std::pair identity{attributes->device, attributes->inode};
    if (std::ranges::find(way_, identity) != way_.end()) return true;
    way_.push_back(identity);
    const bool goOn = visitEntries(directory, maxDepth);
    way_.pop_back();
    return goOn;
}

bool FileVisitor::visitEntries(const std::string& directory, int maxDepth) {
    auto names = platform::namesAt(files_, directory);
    if (!names) {
        platform::tellUnreadable(files_, directory, names.error(), onUnreadable_);
        return true;
    }
    while (names->size() > 0) {
        const std::string name = names->take();
        if (!visitEntry(platform::joinPath(directory, name), name, maxDepth)) return false;
    }
    return true;
}

bool FileVisitor::visitEntry(const std::string& path, const std::string& name, int maxDepth) {
    const auto attributes = files_.attributes(path, LastLink::Refuse);
    if (!attributes) {
        platform::tellUnreadable(files_, path, attributes.error(), onUnreadable_);
        return visit_(path, name, nullptr);
    }
    if (attributes->type == FileType::Directory) return walk(path, maxDepth - 1);
    if (attributes->type == FileType::SymbolicLink && files_.isDirectory(path))
        return ++followedLinks_ > kMaxFollowedLinks || walk(path, maxDepth - 1);
    return visit_(path, name, &*attributes);
}

}  // namespace sweepwright
