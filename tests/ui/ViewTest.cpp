#include "ui/ViewTest.h"

#include <QAccessible>

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

bool ViewTest::swipeTurnsBar(TestApp& app, QPoint from, QPoint to, bool hidden) {
    ui::SceneDelegate& scene = app.scene();
    hidden ? scene.showTabBar() : scene.hideTabBar();
    bool turned = false;
    const QMetaObject::Connection watch =
        QObject::connect(&scene, &ui::SceneDelegate::tabBarIsHiddenChanged,
                         [&] { turned |= scene.tabBarIsHidden() == hidden; });
    swipe(app, from, to);
    QObject::disconnect(watch);
    return turned;
}

QQuickItem* ViewTest::button(TestApp& app, const char* text) {
    const QString wanted = QString::fromUtf8(text);
    QQuickItem* found = nullptr;
    QList<QQuickItem*> waiting{app.item("presenterHost")};
    while (!waiting.isEmpty()) {
        QQuickItem* each = waiting.takeFirst();
        const bool presses = each->metaObject()->indexOfSignal("clicked()") >= 0;
        if (presses && each->property("text").toString() == wanted) found = each;
        waiting += each->childItems();
    }
    if (found == nullptr) ADD_FAILURE() << "no button " << text;
    return found;
}

std::string ViewTest::namelessItems(TestApp& app) {
    std::string nameless;
    QList<QQuickItem*> waiting{app.window().contentItem()};
    while (!waiting.isEmpty()) {
        QQuickItem* each = waiting.takeFirst();
        if (!each->isVisible() || !each->isEnabled()) continue;
        waiting += each->childItems();
        if (each->metaObject()->indexOfSignal("clicked()") < 0) continue;
        QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(each);
        const bool named = spoken != nullptr && !spoken->text(QAccessible::Name).isEmpty() &&
                           spoken->role() != QAccessible::NoRole &&
                           spoken->role() != QAccessible::Client;
        if (!named) nameless += std::string(each->metaObject()->className()) + ' ';
    }
    return nameless;
}

}  // namespace sweepwright::test
