#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QTest>
#include <cstdio>

#include "ui/gallery/GalleryScreen.h"
#include "ui/kit/Appearance.h"
#include "ui/screenshots/Scene.h"

// Draws every screen and state in light and dark, in both languages, on a phone and a tablet, and a
// contact sheet of each combination. Called by script/screenshots, which gives it a display.

namespace {

using namespace sweepwright;
using test::Scene;
using ui::AlertAction;
using ui::AlertController;

struct Look {
    platform::Idiom idiom;
    bool dark;
    std::string language;

    [[nodiscard]] QString name() const {
        return QStringLiteral("%1-%2-%3")
            .arg(idiom == platform::Idiom::Pad ? QStringLiteral("ipad") : QStringLiteral("iphone"),
                 dark ? QStringLiteral("dark") : QStringLiteral("light"),
                 QString::fromStdString(language));
    }
    [[nodiscard]] QSize size() const {
        return idiom == platform::Idiom::Pad ? QSize(820, 1180) : QSize(390, 844);
    }
};

// The gallery page in the first tab, the product's screens in the others.
test::TestApp::MakeScreens gallery(const char* page, const char* key, bool large = false) {
    return [=](const ui::ScreenServices& services) {
        ui::SceneDelegate::Screens screens;
        for (int i = 0; i < 3; ++i) {
            screens.push_back(std::make_unique<test::GalleryScreen>(
                QString::fromLatin1(page), services.texts, key, services.notifications, large));
        }
        return screens;
    };
}

void scroll(test::TestApp& app, double to) {
    app.item("pane")->setProperty("contentY", to);
    app.scene().showTabBar();
}

std::unique_ptr<AlertController> alert(const test::TestApp& app, AlertController::Style style,
                                       const char* title, const char* message) {
    const ui::Texts& texts = app.services().texts;
    return std::make_unique<AlertController>(style, texts(title),
                                             *message == '\0' ? QString() : texts(message));
}

void confirm(test::TestApp& app) {
    const ui::Texts& texts = app.services().texts;
    auto shown = alert(app, AlertController::Alert, "Confirm Clean", "Confirm Clean Message");
    shown->addAction(texts("Clean"), AlertAction::Destructive)
        .addAction(texts("Cancel"), AlertAction::Cancel);
    app.presenter().present(std::move(shown));
}

void help(test::TestApp& app) {
    auto shown = alert(app, AlertController::Alert, "Use Help", "Help Text");
    shown->addAction(app.services().texts("I Know"));
    app.presenter().present(std::move(shown));
}

void busy(test::TestApp& app) {
    auto shown = alert(app, AlertController::Alert, "Cleaning", "");
    shown->addSpinner();
    shown->setMessage(app.services().texts("Cleaning Message") +
                      QStringLiteral(" 42%\ncache_file_3.tmp"));
    app.presenter().present(std::move(shown))->setProgress(0.42);
}

void field(test::TestApp& app) {
    const ui::Texts& texts = app.services().texts;
    auto shown = alert(app, AlertController::Alert, "Add Custom Path", "Enter the path to clean");
    shown->addTextField(texts("Path (e.g., /var/mobile/Library/Caches/MyApp)"))
        .addAction(texts("Add"))
        .addAction(texts("Cancel"), AlertAction::Cancel);
    app.presenter().present(std::move(shown));
}

void tip(test::TestApp& app) {
    const ui::Texts& texts = app.services().texts;
    auto shown = alert(app, AlertController::Alert, "Open File", "");
    shown->setMessage(QStringLiteral("/var/mobile/Library/Caches/com.example.app/fsCachedData"));
    shown->addTip(texts("Filza Trash Tip"))
        .addAction(texts("Open Filza"))
        .addAction(texts("Cancel"), AlertAction::Cancel);
    app.presenter().present(std::move(shown));
}

void sheet(test::TestApp& app) {
    const ui::Texts& texts = app.services().texts;
    auto shown = alert(app, AlertController::ActionSheet, "Language Settings", "");
    shown->setAnchor(QRectF(20, 120, app.window().width() - 40, 56));
    shown->addAction(QStringLiteral("中文简体"))
        .addCurrentAction(QStringLiteral("English"), {})
        .addAction(texts("Cancel"), AlertAction::Cancel);
    app.presenter().present(std::move(shown));
}

void longSheet(test::TestApp& app) {
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

std::vector<Scene> kitScenes() {
    const auto nothing = [](test::TestApp&) {};
    const auto scrolled = [](test::TestApp& app) { scroll(app, 331); };
    const auto second = [](test::TestApp& app) {
        scroll(app, 206);
        app.scene().tabBarController()->setSelectedIndex(1);
    };
    const auto controls = gallery("Controls", "App List");
    return {
        {QStringLiteral("tabs"), {}, nothing},
        {QStringLiteral("welcome"),
         {},
         [](test::TestApp& app) {
             test::waitUntil([&] {
                 app.mainQueue.drain();
                 return app.presenter().active();
             });
         },
         26,
         true},
        {QStringLiteral("glass-bar"), gallery("Colors", "Tab Home"), scrolled},
        {QStringLiteral("glass-bar-second"), gallery("Colors", "Tab Home"), second},
        {QStringLiteral("frosted-bar"), gallery("Colors", "Tab Home"), scrolled, 18},
        {QStringLiteral("frosted-bar-second"), gallery("Colors", "Tab Home"), second, 18},
        {QStringLiteral("frosted-bar-dragged"), gallery("Colors", "Tab Home"),
         [](test::TestApp& app) {
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

std::vector<Scene> allScenes() {
    std::vector<Scene> scenes = kitScenes();
    for (const auto& more :
         {test::homeScenes(), test::appScenes(), test::settingsScenes(), test::historyScenes()})
        scenes.insert(scenes.end(), more.begin(), more.end());
    return scenes;
}

QImage picture(const Scene& scene, const Look& look) {
    test::TestApp app({look.idiom, scene.osVersion, look.language, !scene.welcome}, scene.screens);
    ui::Appearance::shared().setStyle(look.dark ? ui::Appearance::Style::Dark
                                                : ui::Appearance::Style::Light);
    ui::Appearance::shared().setReducedMotion(true);
    ui::Appearance::shared().setTextScale(scene.textScale);
    if (scene.device) scene.device(app);
    QQuickView& view = app.show(look.size());
    scene.prepare(app);
    // Textures of textures need a frame each to reach the last.
    for (int frame = 0; frame < 3; ++frame)
        (void)view.grabWindow();
    return view.grabWindow();
}

class ContactSheet {
  public:
    void add(const QString& name, const QImage& image) { cells_.append({name, image}); }
    void save(const QString& file) const {
        constexpr int kColumns = 5;
        constexpr int kWidth = 390;
        constexpr int kGap = 24;
        if (cells_.isEmpty()) return;
        const QSize first = cells_.first().second.size();
        const int height = kWidth * first.height() / first.width();
        const int rows = (static_cast<int>(cells_.size()) + kColumns - 1) / kColumns;
        QImage sheet(kColumns * (kWidth + kGap) + kGap, rows * (height + 2 * kGap) + kGap,
                     QImage::Format_RGB32);
        sheet.fill(QColor(120, 120, 126));
        QPainter painter(&sheet);
        painter.setPen(Qt::white);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        for (int i = 0; i < cells_.size(); ++i) {
            const QPoint at(kGap + i % kColumns * (kWidth + kGap),
                            kGap + i / kColumns * (height + 2 * kGap));
            painter.drawText(QRect(at, QSize(kWidth, kGap)), Qt::AlignVCenter, cells_[i].first);
            QImage small = cells_[i].second.scaled(kWidth, height, Qt::IgnoreAspectRatio,
                                                   Qt::SmoothTransformation);
            small.setDevicePixelRatio(1.0);
            painter.drawImage(at + QPoint(0, kGap), small);
        }
        painter.end();
        sheet.save(file);
    }

  private:
    QList<QPair<QString, QImage>> cells_;
};

}  // namespace

int main(int argc, char** argv) {
    QGuiApplication application(argc, argv);
    const QStringList words = QGuiApplication::arguments();
    if (words.size() < 2) {
        std::fputs("usage: sweepwright_screenshots FOLDER [part of a scene's name [look]]\n",
                   stderr);
        return 2;
    }
    const QDir folder(words[1]);
    const QString wanted = words.size() > 2 ? words[2] : QString();
    const QString wantedLook = words.size() > 3 ? words[3] : QString();
    if (!folder.mkpath(QStringLiteral("."))) return 1;
    int drawn = 0;
    for (const platform::Idiom idiom : {platform::Idiom::Phone, platform::Idiom::Pad}) {
        for (const bool dark : {false, true}) {
            for (const char* language : {"en", "zh-Hans"}) {
                const Look look{idiom, dark, language};
                if (!look.name().contains(wantedLook)) continue;
                ContactSheet sheet;
                for (const Scene& scene : allScenes()) {
                    if (!scene.name.contains(wanted)) continue;
                    const QImage image = picture(scene, look);
                    const QString file = QStringLiteral("%1-%2.png").arg(scene.name, look.name());
                    if (!image.save(folder.filePath(file))) return 1;
                    sheet.add(scene.name, image);
                    ++drawn;
                }
                sheet.save(
                    folder.filePath(QStringLiteral("contact-sheet-%1.png").arg(look.name())));
            }
        }
    }
    std::printf("%d pictures in %s\n", drawn, qPrintable(folder.absolutePath()));
    return drawn > 0 ? 0 : 1;
}
