#include "engine/Failures.h"

namespace sweepwright {

void Failures::kept(const std::string& path, KeptReason reason, const std::string& by) {
    if (reason != KeptReason::Failed) return;
    const std::lock_guard lock(mutex_);
    failed_.add(path, by.empty() ? path : by);
}

void Failures::unreadable(const std::string& folder, const platform::Error& error) {
    const std::lock_guard lock(mutex_);
    unreadable_.add(folder, error.description);
}

void Failures::notRecorded(const platform::Error& error) {
    const std::lock_guard lock(mutex_);
    if (!recordError_) recordError_ = error;
}

FailureList Failures::unreadableFolders() const {
    const std::lock_guard lock(mutex_);
    return unreadable_.list();
}

FailureList Failures::failedEntries() const {
    const std::lock_guard lock(mutex_);
    return failed_.list();
}

std::optional<platform::Error> Failures::recordError() const {
    const std::lock_guard lock(mutex_);
    return recordError_;
}

/// Whether `path`, or a folder that it lies in, is there already.
bool Failures::Paths::covers(std::string path) const {
    while (!path.empty()) {
        if (reasons_.contains(path)) return true;
        const std::size_t slash = path.find_last_of('/');
        path.erase(slash == std::string::npos ? 0 : slash);
    }
    return false;
}

void Failures::Paths::add(const std::string& path, const std::string& reason) {
    if (covers(path)) return;
    if (reasons_.size() >= kMaxKept) {
        ++surplus_;
        return;
    }
    // '0' follows '/': between the two bounds is what lies in `path`.
    reasons_.erase(reasons_.lower_bound(path + "/"), reasons_.lower_bound(path + "0"));
    reasons_.emplace(path, reason);
}

FailureList Failures::Paths::list() const {
    FailureList list;
    list.count = reasons_.size() + surplus_;
    for (const auto& [path, reason] : reasons_)
        list.entries.push_back({path, reason});
    return list;
}

}  // namespace sweepwright
