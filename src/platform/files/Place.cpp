#include "platform/files/Place.h"

#include <ranges>
#include <utility>
#include <vector>

#include "platform/files/SharedChain.h"

namespace sweepwright::platform {

Place::~Place() {
    releaseChain(std::move(above_));
}

std::string Place::path() const {
    std::vector<const std::string*> parts;
    std::size_t size = 0;
    for (const Place* at = this; at != nullptr; at = at->above_.get()) {
        parts.push_back(&at->part_);
        size += at->part_.size() + 1;
    }
    std::string path;
    path.reserve(size);
    for (const std::string* part : std::views::reverse(parts)) {
        if (part != parts.back()) {
            path.resize(path.find_last_not_of('/') + 1);
            path.push_back('/');
        }
        path.append(*part);
    }
    return path;
}

}  // namespace sweepwright::platform
