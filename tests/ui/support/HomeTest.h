#pragma once

#include <QTest>

#include <gtest/gtest.h>

#include "ui/home/ViewController.h"
#include "ui/support/SampleContent.h"
#include "ui/support/TestApp.h"

namespace sweepwright::test {

/// What tests of the home screen share: the screen of an app, and ways to wait for it.
class HomeTest : public testing::Test {
  protected:
    static ui::ViewController& screenOf(TestApp& app) {
        return *qobject_cast<ui::ViewController*>(app.scene().tabBarController()->at(0).root());
    }
    /// Runs the main queue until `done`.
    static bool until(TestApp& app, const std::function<bool()>& done) {
        return waitUntil([&] {
            app.mainQueue.drain();
            return done();
        });
    }
    /// Runs the main queue until no card says that it is being measured.
    static bool settle(TestApp& app) {
        const ui::ViewController& screen = screenOf(app);
        return until(app, [&] {
            const QString scanning = app.services().texts("Scanning...");
            const QString unknown = QStringLiteral("计算中...");
            for (const ui::CleanItemCardView* card : screen.cards()) {
                if (card->sizeText() == scanning || card->sizeText() == unknown) return false;
            }
            return true;
        });
    }
    /// Scans again, for files that were made after the first scan.
    static bool rescan(TestApp& app) {
        if (!settle(app)) return false;
        screenOf(app).performInitialScan();
        // The apps come last and do not show that they are asked for at once.
        screenOf(app).appCacheCard().updateSize(QStringLiteral("计算中..."));
        return settle(app);
    }
    static QStringList titles(const ui::AlertController& alert) {
        QStringList list;
        for (const ui::AlertAction* action : alert.actions())
            list.append(action->title());
        return list;
    }
    static void choose(TestApp& app, const char* title) {
        ui::AlertController* alert = app.presenter().alert();
        ASSERT_NE(alert, nullptr);
        ui::AlertAction* action = alert->action(QString::fromUtf8(title));
        ASSERT_NE(action, nullptr) << title;
        alert->choose(action);
    }
    /// Whether an alert of this title comes.
    static bool alertComes(TestApp& app, const char* title) {
        return until(app, [&] {
            const ui::AlertController* alert = app.presenter().alert();
            return alert != nullptr && alert->title() == QString::fromUtf8(title);
        });
    }
};

}  // namespace sweepwright::test
