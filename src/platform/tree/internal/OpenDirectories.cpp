#include "platform/tree/internal/OpenDirectories.h"

#include <algorithm>
#include <utility>

namespace sweepwright::platform {

namespace {

auto at(const PlacePointer& place) {
    return [&place](const Directory& directory) { return directory.place() == place; };
}

}  // namespace

const Directory* OpenDirectories::find(const PlacePointer& place) {
    if (place == start_->place()) return start_;
    if (const auto found = std::ranges::find_if(kept_, at(place)); found != kept_.end()) {
        kept_.splice(kept_.begin(), kept_, found);
        return &kept_.front();
    }
    const auto stage = std::ranges::find_if(stages_, at(place));
    return stage == stages_.end() ? nullptr : &*stage;
}

Result<const Directory*> OpenDirectories::of(const PlacePointer& place) {
    if (const Directory* known = find(place)) return known;
    Way way{&place};
    const Directory* base = nullptr;
    for (const PlacePointer* above = &place->above(); base == nullptr; above = &(*above)->above()) {
        base = find(*above);
        if (base == nullptr) way.push_back(above);
    }
    return openWay(base, way);
}

Result<const Directory*> OpenDirectories::openWay(const Directory* base, const Way& way) {
    // Stages that lie deeper than the base are those of a way that has been left.
    const auto leadsOn = [base](const Directory& stage) { return &stage == base; };
    if (const auto stage = std::ranges::find_if(stages_, leadsOn);
        stage != stages_.end() || base == start_)
        stages_.erase(stages_.begin(), stage);
    std::size_t left = way.size();
    std::size_t nextStage = left / 2;
    Directory passed;
    while (left > 0) {
        std::string relative;
        const std::size_t end = left - std::min(left, kStage);
        while (left > end)
            relative.append((*way[--left])->part()).push_back('/');
        relative.pop_back();
        auto opened = files_->openBeneath(*base, relative, mounts_);
        if (!opened) return std::unexpected(opened.error());
        opened->setPlace(*way[left]);
        if (left == 0) {
            keep(std::move(*opened));
            base = &kept_.front();
        } else if (left <= nextStage) {
            base = &stages_.emplace_front(std::move(*opened));
            if (stages_.size() > kMostStages) stages_.pop_back();
            nextStage = left / 2;
        } else {
            passed = std::move(*opened);
            base = &passed;
        }
    }
    return base;
}

Result<Directory> OpenDirectories::open(const PlacePointer& place) {
    const auto above = of(place->above());
    if (!above) return std::unexpected(above.error());
    auto opened = files_->openBeneath(**above, place->part(), mounts_);
    if (opened) opened->setPlace(place);
    return opened;
}

void OpenDirectories::keep(Directory directory) {
    kept_.push_front(std::move(directory));
    if (kept_.size() > mostKept_) kept_.pop_back();
}

void OpenDirectories::closeAll() {
    kept_.clear();
    stages_.clear();
}

}  // namespace sweepwright::platform
