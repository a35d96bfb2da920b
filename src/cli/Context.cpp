#include "cli/Context.h"

namespace sweepwright::cli {

Context::~Context() {
    if (engine_ != nullptr) engine_->setObserver(nullptr);
    if (apps_ != nullptr) apps_->setObserver(nullptr);
}

FileCleanerEngine& Context::engine() {
    if (engine_ == nullptr) {
        engine_ = &FileCleanerEngine::sharedEngine();
        engine_->setObserver(&failures_);
    }
    return *engine_;
}

ThirdPartyAppCacheManager& Context::apps() {
    if (apps_ == nullptr) {
        apps_ = &ThirdPartyAppCacheManager::sharedManager();
        apps_->setObserver(&failures_);
    }
    return *apps_;
}

}  // namespace sweepwright::cli
