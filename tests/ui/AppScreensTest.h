#pragma once

#include <QSignalSpy>

#include "platform/log/Log.h"
#include "ui/ViewTest.h"
#include "ui/apps/AppListViewController.h"
#include "ui/apps/WhitelistViewController.h"
#include "ui/support/InstalledApps.h"

namespace sweepwright::test {

/// The app with apps on its device and its Apps tab, with or without a window.
class AppScreensTest : public ViewTest {
  protected:
    static constexpr std::uint64_t kMiB = std::uint64_t{1} << 20U;

    /// Three user apps, Bravo protected, and two system apps. By size: Alpha, Bravo, Charlie; Maps,
    /// Safari.
    void installFew() {
        install(app_.device, {"com.example.alpha", "Alpha", 30 * kMiB, 2 * kMiB});
        install(app_.device, {"com.example.bravo", "Bravo", 20 * kMiB, 0});
        install(app_.device, {"org.example.charlie", "Charlie", 0, 3 * kMiB});
        install(app_.device, {"com.apple.maps", "Maps", 12 * kMiB, kMiB});
        install(app_.device, {"com.apple.safari", "Safari", 5 * kMiB, 0});
        protect("com.example.bravo");
    }
    void protect(const char* identifier) {
        ASSERT_TRUE(app_.services().appWhitelist.addAppToWhitelist(identifier).has_value());
    }
    [[nodiscard]] bool isProtected(const char* identifier) {
        return app_.services().appWhitelist.isAppInWhitelist(identifier);
    }

    /// From now on the stored lists can't be read, so that none may be changed and no clean begins.
    void damageDefaults() {
        app_.device.fileWith(app_.core.device.userDefaultsFile(), "damaged");
        app_.services().appWhitelist.reload();
    }

    ui::AppListViewController& list() {
        return *qobject_cast<ui::AppListViewController*>(
            app_.scene().tabBarController()->at(1).root());
    }
    ui::AppListModel& rows() { return *list().apps(); }

    /// Runs the main queue until the answer is true; fails the test when it does not become so.
    void runUntil(const std::function<bool()>& done) {
        ASSERT_TRUE(waitUntil([&] {
            app_.mainQueue.drain();
            return done();
        }));
    }
    void finishLoading() {
        runUntil([&] { return !list().loading(); });
    }
    /// A fresh scan, through.
    void reload() {
        list().loadApps();
        finishLoading();
    }
    /// The few apps, scanned.
    void showFew() {
        installFew();
        reload();
    }

    std::string detail(int row) { return rows().at(row).detail.toStdString(); }
    static std::vector<std::string> titles(const ui::AppListModel& rows) {
        std::vector<std::string> result;
        for (int row = 0; row < rows.rowCount(); ++row)
            result.push_back(rows.at(row).title.toStdString());
        return result;
    }
    std::vector<std::string> titles() { return titles(rows()); }
    static std::vector<std::string> names(const ui::ListedApps& apps) {
        std::vector<std::string> result;
        for (const ui::ListedAppPointer& app : apps)
            result.push_back(app->displayName().toStdString());
        return result;
    }

    /// The alert on top; none fails the test.
    ui::AlertController& alert() {
        ui::AlertController* top = app_.presenter().alert();
        if (top == nullptr) {
            ADD_FAILURE() << "there is no alert";
            static ui::AlertController none(ui::AlertController::Alert, {});
            return none;
        }
        return *top;
    }
    void choose(const char* title) {
        ui::AlertAction* action = alert().action(QString::fromUtf8(title));
        ASSERT_NE(action, nullptr) << title;
        alert().choose(action);
    }
    static std::vector<std::string> actionTitles(const ui::AlertController& alert) {
        std::vector<std::string> result;
        for (const ui::AlertAction* action : alert.actions())
            result.push_back(action->title().toStdString());
        return result;
    }
    /// Scans that were finished since the capture began.
    static int scansIn(const platform::LogCapture& log) {
        int scans = 0;
        for (const std::string& line : log.lines())
            scans += line.starts_with("📊 最终找到") ? 1 : 0;
        return scans;
    }

    TestApp app_{{}, withoutHome};
};

}  // namespace sweepwright::test
