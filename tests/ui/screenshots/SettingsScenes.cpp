#include "ui/kit/Appearance.h"
#include "ui/presentation/NavigationController.h"
#include "ui/presentation/Presenter.h"
#include "ui/screenshots/Scene.h"
#include "ui/settings/SettingsViewController.h"

namespace sweepwright::test {

namespace {

using Prepare = std::function<void(TestApp&)>;

ui::SettingsViewController& settings(TestApp& app) {
    app.scene().tabBarController()->setSelectedIndex(2);
    return *qobject_cast<ui::SettingsViewController*>(app.scene().tabBarController()->at(2).root());
}

// As a person who has used the app for a while has them.
void furnish(TestApp& app) {
    const ui::ScreenServices& services = app.services();
    for (const char* path :
         {"/var/mobile/Library/Caches/MyApp", "/var/mobile/Media/Downloads/旧的下载/",
          "/var/mobile/Containers/Shared/AppGroup/3F2504E0-4F89-11D3-9A0C-0305E82C3301/Library/"
          "Caches/very/deep/below/it/all"}) {
        (void)services.customPaths.addCustomPath(path);
    }
    (void)services.pathWhitelist.addPathToWhitelist("/var/mobile/Media/DCIM/");
    (void)services.pathWhitelist.addPathToWhitelist("/var/mobile/Documents/重要资料 \"2026\"");
    for (const char* app_ : {"org.example.chat", "org.example.maps"})
        (void)services.appWhitelist.addAppToWhitelist(app_);
    app.core.time = std::chrono::system_clock::from_time_t(1780000000);
    for (int i = 0; i < 27; ++i)
        (void)app.core.statistics.recordClean(482344960);
}

void scrolledTo(TestApp& app, double share) {
    app.settle();
    QQuickItem* list = app.item("settingsList");
    const double top = -list->property("topMargin").toDouble();
    const double end = list->property("contentHeight").toDouble() - list->height() +
                       list->property("bottomMargin").toDouble();
    list->setProperty("contentY", list->property("originY").toDouble() + top + (end - top) * share);
    app.scene().showTabBar();
}

// Presses the row of this tag and then chooses what is named by these titles.
Prepare press(int tag, std::vector<std::function<QString(const ui::Texts&)>> titles = {}) {
    return [=](TestApp& app) {
        furnish(app);
        ui::SettingsViewController& screen = settings(app);
        screen.loadSettingsData();
        if (tag >= 4000) scrolledTo(app, 1);
        app.settle();
        QQuickItem* row = app.item(("row" + std::to_string(tag)).c_str());
        const QRectF cell = row->mapRectToScene({16, 0, row->width() - 32, row->height()});
        screen.didSelectRow(tag / ui::SettingsRows::kTagsPerSection,
                            tag % ui::SettingsRows::kTagsPerSection, cell);
        for (const auto& title : titles) {
            ui::AlertController* alert = app.presenter().alert();
            alert->choose(alert->action(title(app.services().texts)));
        }
    };
}

std::function<QString(const ui::Texts&)> keyed(const char* key) {
    return [key](const ui::Texts& texts) { return texts(key); };
}

std::function<QString(const ui::Texts&)> fixed(const char* text) {
    return [text](const ui::Texts&) { return QString::fromUtf8(text); };
}

Prepare typed(Prepare before, const char* text) {
    return [=](TestApp& app) {
        before(app);
        app.presenter().alert()->setText(QString::fromUtf8(text));
    };
}

void shown(TestApp& app) {
    furnish(app);
    settings(app).loadSettingsData();
}

void largeText(TestApp& app) {
    ui::Appearance::shared().setTextScale(1.5);
    shown(app);
}

}  // namespace

std::vector<Scene> settingsScenes() {
    const auto scene = [](const char* name, Prepare prepare) {
        return Scene{.name = QString::fromLatin1(name), .prepare = std::move(prepare)};
    };
    const auto add = keyed("Add Path");
    const auto view = keyed("View Paths");
    return {
        scene("settings", shown),
        scene("settings-new", [](TestApp& app) { settings(app); }),
        scene("settings-switched",
              [](TestApp& app) {
                  shown(app);
                  settings(app).switchValueChanged(1000, true);
              }),
        scene("settings-middle",
              [](TestApp& app) {
                  shown(app);
                  scrolledTo(app, 0.5);
              }),
        scene("settings-end",
              [](TestApp& app) {
                  shown(app);
                  scrolledTo(app, 1);
              }),
        scene("settings-large-text", largeText),
        scene("settings-large-text-middle",
              [](TestApp& app) {
                  largeText(app);
                  scrolledTo(app, 0.5);
              }),
        scene("settings-language", press(0)),
        scene("settings-language-changed", press(0, {fixed("English")})),
        scene("settings-threshold", press(1001)),
        scene("settings-paths", press(1002)),
        scene("settings-path-add",
              typed(press(1002, {add}), "/var/mobile/Documents/“我的文件”/it's \"old\"/Caches")),
        scene("settings-path-add-empty", press(1002, {add})),
        scene("settings-path-list", press(1002, {view})),
        scene("settings-path-options",
              press(1002, {view, fixed("/var/mobile/Media/Downloads/旧的下载/")})),
        scene("settings-statistics", press(2001)),
        scene("settings-protected", press(3001)),
        scene("settings-protected-list", press(3001, {view})),
        scene("settings-protected-built-in",
              press(3001, {view, fixed("🔒 /var/mobile/Library/Caches/GeoServices")})),
        scene("settings-help", press(4001)),
        scene("settings-privacy", press(4002)),
        scene("settings-about", press(4003)),
        scene("settings-link-failed",
              [](TestApp& app) {
                  app.opener.opens = false;
                  press(5000)(app);
              }),
        scene("settings-not-saved",
              [](TestApp& app) {
                  shown(app);
                  app.device.fileWith(app.core.device.userDefaultsFile(), "bplist00, but no more");
                  settings(app).switchValueChanged(1000, true);
              }),
    };
}

}  // namespace sweepwright::test
