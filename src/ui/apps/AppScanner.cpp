#include "ui/apps/AppScanner.h"

#include <QPointer>
#include <utility>

namespace sweepwright::ui {

AppScanner::AppScanner(ThirdPartyAppCacheManager& manager, Scope scope, Handler found)
    : manager_(manager), scope_(scope), found_(std::move(found)) {}

void AppScanner::request() {
    if (isRunning_) {
        isWantedAgain_ = true;
    } else {
        start();
    }
}

void AppScanner::start() {
    isRunning_ = true;
    const auto completion = [self = QPointer<AppScanner>(this)](const auto& apps) {
        if (self) self->finish(apps);
    };
    if (scope_ == Scope::AllApps) {
        manager_.scanAllAppsWithCompletion(completion);
    } else {
        manager_.scanThirdPartyAppsWithCompletion(completion);
    }
}

void AppScanner::finish(const ThirdPartyAppCacheManager::AppList& apps) {
    isRunning_ = false;
    if (std::exchange(isWantedAgain_, false)) start();
    found_(apps);
}

}  // namespace sweepwright::ui
