#pragma once

#include <deque>
#include <expected>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/UniqueDescriptor.h"
#include "platform/files/Calls.h"
#include "platform/files/FileManager.h"

namespace sweepwright::platform {

/// Finds device paths beneath a root descriptor, which neither ".." nor an absolute link leaves.
/// Failures are errno values.
class BeneathRoot {
  public:
    template <class T>
    using Outcome = std::expected<T, int>;

    /// An entry of an open directory. `name` is "." for the directory itself.
    struct Entry {
        UniqueDescriptor parent;
        std::string name;
        std::string path;  ///< device path without a link on it, where `locate` had to find out
    };

    BeneathRoot(int root, Calls calls) : root_(root), calls_(calls) {}

    /// Opens `path` as a directory for listing.
    Outcome<UniqueDescriptor> openDirectory(std::string_view path, LastLink lastLink) const;

    /// Finds the directory and the name of `path`; the entry itself need not exist. With
    /// LastLink::Follow the entry is no link.
    Outcome<Entry> locate(std::string_view path, LastLink lastLink) const;

    /// As locate() with links followed, component by component, so that `path` of the answer is
    /// free of links.
    Outcome<Entry> resolve(std::string_view path, LastLink lastLink) const;

    /// Opens `relative` beneath `base` for listing, no component being a link.
    Outcome<UniqueDescriptor> openBeneath(int base, std::string_view relative, Mounts mounts) const;

  private:
    Outcome<UniqueDescriptor> descend(const std::vector<std::string>& components) const;
    int root_;
    Calls calls_;
};

}  // namespace sweepwright::platform
