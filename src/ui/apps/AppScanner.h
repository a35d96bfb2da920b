#pragma once

#include <QObject>
#include <functional>

#include "apps/ThirdPartyAppCacheManager.h"

namespace sweepwright::ui {

/// Looks up the installed apps for a screen, one scan at a time. Main thread only.
class AppScanner : public QObject {
  public:
    enum class Scope { AllApps, ThirdPartyApps };
    using Handler = std::function<void(const ThirdPartyAppCacheManager::AppList& apps)>;

    /// `found` hears of every scan's result for as long as this lives. `manager` must outlive this.
    AppScanner(ThirdPartyAppCacheManager& manager, Scope scope, Handler found);

    /// Starts a scan. While one runs, a single further one follows it, however often it is asked
    /// for: what changed after a request is always in a result that comes.
    void request();
    [[nodiscard]] bool isRunning() const { return isRunning_; }

  private:
    void start();
    void finish(const ThirdPartyAppCacheManager::AppList& apps);

    ThirdPartyAppCacheManager& manager_;
    Scope scope_;
    Handler found_;
    bool isRunning_ = false;
    bool isWantedAgain_ = false;
};

}  // namespace sweepwright::ui
