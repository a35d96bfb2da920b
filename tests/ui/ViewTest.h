#pragma once

#include <QPointingDevice>
#include <QTest>
#include <string>

#include <gtest/gtest.h>

#include "ui/gallery/GalleryScreen.h"
#include "ui/presentation/AlertController.h"
#include "ui/support/TestApp.h"

namespace sweepwright::test {

/// The app with a window and pages of the gallery in its tabs, and a finger on it.
class ViewTest : public testing::Test {
  protected:
    /// A page of the gallery in every tab.
    static TestApp::MakeScreens gallery(const char* page);

    GalleryScreen& screen(TestApp& app) {
        return *qobject_cast<GalleryScreen*>(app.scene().tabBarController()->at(0).root());
    }
    /// A tap of the finger.
    void tap(TestApp& app, QPoint at);
    /// The finger moves from one point to another in twelve steps and lets go.
    void swipe(TestApp& app, QPoint from, QPoint to);
    /// Such a swipe, and whether the bar came to be `hidden` on its way. What a list does when it
    /// is let go of is its own: under load it may spring back by a move or two, and the bar with
    /// it.
    bool swipeTurnsBar(TestApp& app, QPoint from, QPoint to, bool hidden);
    void click(TestApp& app, const char* objectName) {
        QTest::mouseClick(&app.window(), Qt::LeftButton, {},
                          TestApp::middleOf(app.item(objectName)));
    }
    void key(TestApp& app, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(&app.window(), key, modifiers);
    }

    /// The button of an alert or a sheet that says this; fails the test when there is none.
    static QQuickItem* button(TestApp& app, const char* text);
    /// The classes of what is shown and can be pressed, but says nothing to a screen reader.
    static std::string namelessItems(TestApp& app);

    QPointingDevice* finger_ = touchScreen();

  private:
    static QPointingDevice* touchScreen();
};

}  // namespace sweepwright::test
