#include "ui/ViewTest.h"

namespace sweepwright::test {

TestApp::MakeScreens ViewTest::gallery(const char* page) {
    return [page](const ui::ScreenServices& services) {
        ui::SceneDelegate::Screens screens;
        for (int i = 0; i < 3; ++i) {
            screens.push_back(std::make_unique<GalleryScreen>(
                QString::fromLatin1(page), services.texts, "App List", services.notifications));
        }
        return screens;
    };
}

QPointingDevice* ViewTest::touchScreen() {
    static QPointingDevice* const device = QTest::createTouchDevice();
    return device;
}

void ViewTest::tap(TestApp& app, QPoint at) {
    QTest::touchEvent(&app.window(), finger_).press(0, at);
    QTest::touchEvent(&app.window(), finger_).release(0, at);
}

void ViewTest::swipe(TestApp& app, QPoint from, QPoint to) {
    constexpr int kMoves = 12;
    constexpr int kMilliseconds = 8;  // between moves, as a finger's
    QTest::touchEvent(&app.window(), finger_).press(0, from);
    for (int i = 1; i <= kMoves; ++i) {
        QTest::qWait(kMilliseconds);
        QTest::touchEvent(&app.window(), finger_).move(0, from + (to - from) * i / kMoves);
    }
    QTest::touchEvent(&app.window(), finger_).release(0, to);
}

}  // namespace sweepwright::test
