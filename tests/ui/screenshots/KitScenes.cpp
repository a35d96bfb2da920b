#include "ui/gallery/GalleryScreen.h"
#include "ui/screenshots/Scene.h"

namespace sweepwright::test {

namespace {

using ui::AlertAction;
using ui::AlertController;

// The gallery page in the first tab, the product's screens in the others.
TestApp::MakeScreens gallery(const char* page, const char* key, bool large = false) {
    return [=](const ui::ScreenServices& services) {
        ui::SceneDelegate::Screens screens;
        for (int i = 0; i < 3; ++i) {
            screens.push_back(std::make_unique<GalleryScreen>(
                QString::fromLatin1(page), services.texts, key, services.notifications, large));
        }
        return screens;
    };
}

void scroll(TestApp& app, double to) {
    app.item("pane")->setProperty("contentY", to);
    app.scene().showTabBar();
}

std::unique_ptr<AlertController> alert(const TestApp& app, AlertController::Style style,
                                       const char* title, const char* message) {
    const ui::Texts& texts = app.services().texts;
    return std::make_unique<AlertController>(style, texts(title),
                                             *message == '\0' ? QString() : texts(message));
}

void confirm(TestApp& app) {
    const ui::Texts& texts = app.services().texts;
    auto shown = alert(app, AlertController::Alert, "Confirm Clean", "Confirm Clean Message");
    shown->addAction(texts("Clean"), AlertAction::Destructive)
        .addAction(texts("Cancel"), AlertAction::Cancel);
    app.presenter().present(std::move(shown));
}

void help(TestApp& app) {
    auto shown = alert(app, AlertController::Alert, "Use Help", "Help Text");
    shown->addAction(app.services().texts("I Know"));
    app.presenter().present(std::move(shown));
}

void busy(TestApp& app) {
    auto shown = alert(app, AlertController::Alert, "Cleaning", "");
    shown->addSpinner();
    shown->setMessage(app.services().texts("Cleaning Message") +
                      QStringLiteral(" 42%\ncache_file_3.tmp"));
    app.presenter().present(std::move(shown))->setProgress(0.42);
}

void field(TestApp& app) {
    const ui::Texts& texts = app.services().texts;
    auto shown = alert(app, AlertController::Alert, "Add Custom Path", "Enter the path to clean");
    shown->addTextField(texts("Path (e.g., /var/mobile/Library/Caches/MyApp)"))
        .addAction(texts("Add"))
        .addAction(texts("Cancel"), AlertAction::Cancel);
    app.presenter().present(std::move(shown));
}

void tip(TestApp& app) {
    const ui::Texts& texts = app.services().texts;
    auto shown = alert(app, AlertController::Alert, "Open File", "");
    shown->setMessage(QStringLiteral("/var/mobile/Library/Caches/com.example.app/fsCachedData"));
    shown->addTip(texts("Filza Trash Tip"))
        .addAction(texts("Open Filza"))
        .addAction(texts("Cancel"), AlertAction::Cancel);
    app.presenter().present(std::move(shown));
}

void sheet(TestApp& app) {
    const ui::Texts& texts = app.services().texts;
    auto shown = alert(app, AlertController::ActionSheet, "Language Settings", "");
    shown->setAnchor(QRectF(20, 120, app.window().width() - 40, 56));
    shown->addAction(QStringLiteral("中文简体"))
        .addCurrentAction(QStringLiteral("English"), {})
        .addAction(texts("Cancel"), AlertAction::Cancel);
    app.presenter().present(std::move(shown));
}

void longSheet(TestApp& app) {
    const ui::Texts& texts = app.services().texts;
    auto shown =
        alert(app, AlertController::ActionSheet, "Path Whitelist", "Path Whitelist Description");
    shown->setAnchor(QRectF(20, 420, app.window().width() - 40, 56));
    for (int i = 0; i < 20; ++i) {
        shown->addAction(
            QStringLiteral("🔒 /var/mobile/Library/Caches/com.apple.Maps/Tile%1").arg(i));
    }
    shown->addAction(texts("Remove"), AlertAction::Destructive)
        .addAction(texts("Cancel"), AlertAction::Cancel);
    app.presenter().present(std::move(shown));
}

}  // namespace

std::vector<Scene> kitScenes() {
    const auto nothing = [](TestApp&) {};
    const auto scrolled = [](TestApp& app) { scroll(app, 331); };
    const auto second = [](TestApp& app) {
        scroll(app, 206);
        app.scene().tabBarController()->setSelectedIndex(1);
    };
    const auto controls = gallery("Controls", "App List");
    return {
        {QStringLiteral("tabs"), home(128 * kGigabyte, 71.4), nothing},
        {QStringLiteral("welcome"), home(128 * kGigabyte, 71.4),
         [](TestApp& app) {
             waitUntil([&] {
                 app.mainQueue.drain();
                 return app.presenter().active();
             });
         },
         26, true},
        {QStringLiteral("glass-bar"), gallery("Colors", "Tab Home"), scrolled},
        {QStringLiteral("glass-bar-second"), gallery("Colors", "Tab Home"), second},
        {QStringLiteral("frosted-bar"), gallery("Colors", "Tab Home"), scrolled, 18},
        {QStringLiteral("frosted-bar-second"), gallery("Colors", "Tab Home"), second, 18},
        {QStringLiteral("frosted-bar-dragged"), gallery("Colors", "Tab Home"),
         [](TestApp& app) {
             scroll(app, 331);
             app.scene().liquidGlassTabBar()->panBegan(60);
             app.scene().liquidGlassTabBar()->panChanged(app.scene().liquidGlassTabBar()->width() *
                                                         0.6);
         },
         18},
        {QStringLiteral("kit-controls"), controls, nothing},
        {QStringLiteral("kit-symbols"), gallery("Symbols", "App List"), nothing},
        {QStringLiteral("kit-grouped"), gallery("Grouped", "Settings", true), nothing},
        {QStringLiteral("kit-list"), gallery("Apps", "App List"), nothing},
        {QStringLiteral("kit-list-swiped"), gallery("AppsSwiped", "App List"), nothing},
        {QStringLiteral("kit-list-editing"), gallery("AppsEditing", "App List"), nothing},
        {QStringLiteral("alert-confirm"), controls, confirm},
        {QStringLiteral("alert-help"), controls, help},
        {QStringLiteral("alert-busy"), controls, busy},
        {QStringLiteral("alert-field"), controls, field},
        {QStringLiteral("alert-tip"), controls, tip},
        {QStringLiteral("sheet"), controls, sheet},
        {QStringLiteral("sheet-long"), controls, longSheet},
    };
}

}  // namespace sweepwright::test
