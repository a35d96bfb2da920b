#pragma once

#include <QString>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ui/gallery/GalleryScreen.h"
#include "ui/presentation/AlertController.h"
#include "ui/presentation/NavigationController.h"
#include "ui/settings/SettingsViewController.h"
#include "ui/support/TestApp.h"

namespace sweepwright::test {

/// Makes every change of the user defaults fail, while they can be read.
inline void blockChanges(TestApp& app) {
    const std::string lock = app.device.host(app.core.device.userDefaultsFile() + ".lock");
    std::filesystem::remove(lock);
    std::filesystem::create_directory(lock);
}

/// The product's settings beside tabs that do nothing: the first scans of the others would write
/// into what a test captures of the log.
inline ui::SceneDelegate::Screens settingsAlone(const ui::ScreenServices& services) {
    ui::SceneDelegate::Screens screens = withoutHome(services);
    screens.at(1) = std::make_unique<GalleryScreen>(QStringLiteral("Controls"), services.texts,
                                                    "App List", services.notifications);
    return screens;
}

/// The settings of the app, on screen but without a window.
class SettingsTest : public testing::Test {
  protected:
    SettingsTest() : SettingsTest(TestAppOptions{}) {}
    explicit SettingsTest(const TestAppOptions& options) : app_(options, settingsAlone) {
        app_.scene().tabBarController()->setSelectedIndex(2);
        stack().setVisible(true);
    }

    ui::NavigationController& stack() { return app_.scene().tabBarController()->at(2); }
    ui::SettingsViewController& settings() {
        return *qobject_cast<ui::SettingsViewController*>(stack().root());
    }
    platform::UserDefaults& defaults() { return app_.core.defaults; }
    [[nodiscard]] QString text(const char* key) { return app_.services().texts(key); }
    ui::SettingsRow row(int section, int row) {
        return settings()
            .settingsData()
            .at(static_cast<std::size_t>(section))
            .at(static_cast<std::size_t>(row));
    }

    /// The alert on top; an empty one, and a failed test, when there is none.
    ui::AlertController& alert() {
        static ui::AlertController none(ui::AlertController::Alert, {});
        ui::AlertController* shown = app_.presenter().alert();
        if (shown == nullptr) ADD_FAILURE() << "no alert";
        return shown == nullptr ? none : *shown;
    }
    void choose(const QString& title) {
        ui::AlertAction* action = alert().action(title);
        if (action == nullptr) ADD_FAILURE() << "no action " << title.toStdString();
        if (action != nullptr) alert().choose(action);
    }
    void choose(const char* key) { choose(text(key)); }
    std::vector<std::string> titles() {
        std::vector<std::string> all;
        for (const ui::AlertAction* action : alert().actions())
            all.push_back(action->title().toStdString());
        return all;
    }

    void blockChanges() { test::blockChanges(app_); }
    void damageDefaults() { app_.device.fileWith(app_.core.device.userDefaultsFile(), kDamaged); }
    std::string storedBytes() { return app_.device.content(app_.core.device.userDefaultsFile()); }
    void expectSaveFailure() {
        EXPECT_EQ(alert().title(), text("Cannot Save"));
        EXPECT_EQ(alert().message(), text("Cannot Save Message"));
        EXPECT_FALSE(alert().tip().isEmpty());
        choose("OK");
        EXPECT_FALSE(app_.presenter().active());
    }

    static constexpr const char* kDamaged = "bplist00 and nothing that follows it";

    TestApp app_;
};

}  // namespace sweepwright::test
