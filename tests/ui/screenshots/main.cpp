#include <QDir>
#include <QGuiApplication>
#include <QStyleHints>
#include <cstdio>

#include <gtest/gtest.h>

#include "ui/kit/Appearance.h"
#include "ui/screenshots/Canvas.h"
#include "ui/screenshots/ContactSheet.h"
#include "ui/screenshots/Scene.h"

// Draws every screen and state in light and dark on one device in one language, and a contact sheet
// of each. Called by script/screenshots, which gives it a display.

namespace {

using namespace sweepwright;
using test::Scene;
using Style = ui::Appearance::Style;

// What is the same in a light picture and the dark one.
struct Setting {
    QString device;
    QString language;

    [[nodiscard]] bool pad() const { return device == QLatin1String("ipad"); }
    [[nodiscard]] QSize size() const { return pad() ? QSize(820, 1180) : QSize(390, 844); }
    [[nodiscard]] test::TestAppOptions options(const Scene& scene) const {
        return {pad() ? platform::Idiom::Pad : platform::Idiom::Phone, scene.osVersion,
                language.toStdString(), !scene.welcome};
    }
};

struct Look {
    Style style;
    QString name;
    test::ContactSheet sheet = {};
};

std::vector<Look> looksOf(const Setting& setting, const QString& wanted) {
    std::vector<Look> looks;
    const auto add = [&](Style style, const char* shade) {
        const QString name =
            QStringLiteral("%1-%2-%3").arg(setting.device, QLatin1String(shade), setting.language);
        if (name.contains(wanted)) looks.push_back({style, name});
    };
    add(Style::Light, "light");
    add(Style::Dark, "dark");
    return looks;
}

std::vector<Scene> scenesNamed(const QString& wanted) {
    std::vector<Scene> scenes;
    for (const auto& some : {test::kitScenes(), test::homeScenes(), test::appScenes(),
                             test::settingsScenes(), test::historyScenes()}) {
        for (const Scene& scene : some)
            if (scene.name.contains(wanted)) scenes.push_back(scene);
    }
    return scenes;
}

void save(const QImage& image, const QDir& folder, const QString& scene, const QString& look) {
    const QString file = folder.filePath(QStringLiteral("%1-%2.png").arg(scene, look));
    // The lightest compression: the usual one takes as long as drawing.
    constexpr int kQuickly = 85;
    if (!image.save(file, "PNG", kQuickly)) qFatal("%s can't be written", qPrintable(file));
}

// One app for all looks: it changes its colours where it stands.
void draw(test::Graphics& graphics, const Scene& scene, const Setting& setting,
          std::vector<Look>& looks, const QDir& folder) {
    QQuickRenderControl control;
    test::TestApp app(setting.options(scene), scene.screens);
    ui::Appearance& appearance = ui::Appearance::shared();
    appearance.setReducedMotion(true);
    appearance.setTextScale(scene.textScale);
    if (scene.device) scene.device(app);
    test::Canvas canvas(graphics, app.showOn(control, setting.size()), control);
    scene.prepare(app);
    for (Look& look : looks) {
        appearance.setStyle(look.style);
        app.settle();
        const QImage image = canvas.draw();
        save(image, folder, scene.name, look.name);
        look.sheet.add(scene.name, image);
    }
}

}  // namespace

int main(int argc, char** argv) {
    // Where a glyph lies in its texture goes by hashes, and shows at its edges.
    QHashSeed::setDeterministicGlobalSeed();
    QGuiApplication application(argc, argv);
    QGuiApplication::styleHints()->setCursorFlashTime(0);
    const test::StoppedClock clock;
    const QStringList words = QGuiApplication::arguments();
    if (words.size() != 6) {
        std::fputs(
            "usage: sweepwright_screenshots FOLDER SCENE LOOK DEVICE LANGUAGE\n"
            "SCENE and LOOK are parts of names; DEVICE is iphone or ipad\n",
            stderr);
        return 2;
    }
    const QDir folder(words[1]);
    if (!folder.mkpath(QStringLiteral("."))) qFatal("%s can't be made", qPrintable(words[1]));
    const Setting setting{words[4], words[5]};
    std::vector<Look> looks = looksOf(setting, words[3]);
    if (looks.empty()) return 0;
    test::Graphics graphics;
    for (const Scene& scene : scenesNamed(words[2]))
        draw(graphics, scene, setting, looks, folder);
    for (const Look& look : looks) {
        if (look.sheet.count() == 0) continue;
        save(look.sheet.image(), folder, QStringLiteral("contact-sheet"), look.name);
        std::printf("%s: %d pictures\n", qPrintable(look.name), look.sheet.count());
    }
    // What the app's support expected, it has told itself.
    return testing::UnitTest::GetInstance()->ad_hoc_test_result().Failed() ? 1 : 0;
}
