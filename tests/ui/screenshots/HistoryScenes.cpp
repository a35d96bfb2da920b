#include "protection/CleanHistoryManager.h"
#include "ui/history/CleanHistoryViewController.h"
#include "ui/kit/Appearance.h"
#include "ui/presentation/NavigationController.h"
#include "ui/presentation/Presenter.h"
#include "ui/screenshots/Scene.h"
#include "ui/settings/SettingsViewController.h"

namespace sweepwright::test {

namespace {

using std::chrono::hours;
using std::chrono::minutes;

ui::CleanHistoryViewController& history(TestApp& app) {
    app.scene().tabBarController()->setSelectedIndex(2);
    ui::NavigationController& stack = app.scene().tabBarController()->at(2);
    qobject_cast<ui::SettingsViewController*>(stack.root())->showCleanHistory();
    return *qobject_cast<ui::CleanHistoryViewController*>(stack.top());
}

ui::CleanHistoryViewController& furnished(TestApp& app) {
    app.core.time = std::chrono::system_clock::from_time_t(1780000000);
    constexpr std::uint64_t kBytes = 39'218'733;
    for (int i = 0; i < 23; ++i) {
        app.core.time += hours(19) + minutes(7 * i);
        const auto bytes = kBytes * static_cast<std::uint64_t>(1 + i * i % 37);
        (void)app.core.history.saveCleanHistoryWithType(static_cast<CleanType>(i * 3 % 11), bytes);
    }
    app.core.time += minutes(3);
    (void)app.core.history.saveCleanHistoryWithType(CleanType::Cache, 1);
    (void)app.core.history.saveCleanHistoryWithType(
        CleanType::ThirdPartyApps, std::uint64_t{3} << 40U,
        "第三方应用缓存 (一个名字非常非常长的应用程序，长到一行怎么也放不下)");
    return history(app);
}

}  // namespace

std::vector<Scene> historyScenes() {
    const auto scene = [](const char* name, std::function<void(TestApp&)> prepare) {
        return Scene{.name = QString::fromLatin1(name), .prepare = std::move(prepare)};
    };
    return {
        scene("history", [](TestApp& app) { furnished(app); }),
        scene("history-empty", [](TestApp& app) { history(app); }),
        scene("history-swiped",
              [](TestApp& app) {
                  furnished(app);
                  app.settle();
                  QQuickItem* entry = app.item("entry2");
                  QMetaObject::invokeMethod(entry, "openActions");
                  (void)waitUntil([&] { return entry->property("settled").toBool(); });
              }),
        scene("history-scrolled",
              [](TestApp& app) {
                  furnished(app);
                  app.settle();
                  app.item("historyList")->setProperty("contentY", 400);
                  app.scene().showTabBar();
              }),
        scene("history-detail", [](TestApp& app) { furnished(app).didSelectRow(1); }),
        scene("history-clear", [](TestApp& app) { furnished(app).clearHistory(); }),
        scene("history-large-text",
              [](TestApp& app) {
                  ui::Appearance::shared().setTextScale(1.5);
                  furnished(app);
              }),
    };
}

}  // namespace sweepwright::test
