#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace sweepwright {

/// Answers quickly how a path lies to a set of paths, which are compared as texts divided at every
/// "/". One walk down the parts of the path asked for, until they part from all paths of the set.
class PathIndex {
  public:
    PathIndex() = default;
    explicit PathIndex(const std::vector<std::string>& paths);

    /// Whether `path` equals a path of the set, lies inside one or is above one. (The text "/" is
    /// not above "/a", since no "/" follows it there.)
    [[nodiscard]] bool touches(std::string_view path) const;

    /// Whether touches() is false for `path` and for the path of whatever may lie in it, however
    /// deep. Of "/" the entries are named "/a" and not "//a".
    [[nodiscard]] bool isFree(std::string_view path) const;

  private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view part) const {
            return std::hash<std::string_view>{}(part);
        }
    };
    struct Node {
        bool isMember = false;
        std::unordered_map<std::string, std::unique_ptr<Node>, Hash, std::equal_to<>> children;
    };

    Node root_;
};

}  // namespace sweepwright
