#include "protection/PathIndex.h"

#include <cstddef>

namespace sweepwright {

namespace {

/// Takes the part before the first "/" off `rest`; `last` when there is no further one.
std::string_view takePart(std::string_view& rest, bool& last) {
    const std::size_t end = rest.find('/');
    last = end == std::string_view::npos;
    const std::string_view part = rest.substr(0, end);
    rest.remove_prefix(last ? rest.size() : end + 1);
    return part;
}

}  // namespace

PathIndex::PathIndex(const std::vector<std::string>& paths) {
    for (const std::string& path : paths) {
        Node* node = &root_;
        std::string_view rest = path;
        for (bool last = false; !last;) {
            auto& child = node->children[std::string(takePart(rest, last))];
            if (!child) child = std::make_unique<Node>();
            node = child.get();
        }
        node->isMember = true;
    }
}

bool PathIndex::touches(std::string_view path) const {
    const Node* node = &root_;
    for (bool last = false; !last;) {
        const auto child = node->children.find(takePart(path, last));
        if (child == node->children.end()) return false;
        node = child->second.get();
        if (node->isMember) return true;
    }
    return true;  // the parts of some member begin with those of the path
}

bool PathIndex::isFree(std::string_view path) const {
    // An entry's parts begin with those of its directory, but for "/", whose last part is empty.
    return path == "/" ? !touches("") : !touches(path);
}

}  // namespace sweepwright
