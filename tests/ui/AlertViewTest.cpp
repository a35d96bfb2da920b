#include "ui/ViewTest.h"

namespace sweepwright::test {
namespace {

using ui::AlertAction;
using ui::AlertController;

class AlertView : public ViewTest {
  protected:
    void SetUp() override { app_.show(); }

    AlertAction::Handler note(const char* what) {
        return [this, what] { notes_.append(QString::fromLatin1(what)); };
    }
    AlertController* confirm() {
        auto alert = std::make_unique<AlertController>(
            AlertController::Alert, QStringLiteral("Confirm"), QStringLiteral("Sure?"));
        alert->addAction(QStringLiteral("Clean"), AlertAction::Destructive, note("clean"))
            .addAction(QStringLiteral("Cancel"), AlertAction::Cancel, note("cancel"));
        return app_.presenter().present(std::move(alert));
    }
    AlertController* sheet() {
        auto alert = std::make_unique<AlertController>(AlertController::ActionSheet,
                                                       QStringLiteral("Choose"));
        alert->addAction(QStringLiteral("One"), AlertAction::Default, note("one"))
            .addAction(QStringLiteral("Cancel"), AlertAction::Cancel, note("cancel"));
        return app_.presenter().present(std::move(alert));
    }
    QQuickItem* button(const char* text) { return ViewTest::button(app_, text); }
    bool faded() {
        return waitUntil([&] { return app_.presenter().rowCount() == 0; });
    }

    TestApp app_{{}, gallery("Controls")};
    QStringList notes_;
};

TEST_F(AlertView, ChoosesWhatIsClicked) {
    confirm();
    QTest::mouseClick(&app_.window(), Qt::LeftButton, {}, TestApp::middleOf(button("Clean")));
    EXPECT_EQ(notes_, QStringList{QStringLiteral("clean")});
    EXPECT_TRUE(faded());
}

TEST_F(AlertView, ChoosesWhatIsTapped) {
    confirm();
    tap(app_, TestApp::middleOf(button("Clean")));
    EXPECT_EQ(notes_, QStringList{QStringLiteral("clean")});
}

TEST_F(AlertView, CancelsOnEscape) {
    confirm();
    key(app_, Qt::Key_Escape);
    EXPECT_EQ(notes_, QStringList{QStringLiteral("cancel")});
}

TEST_F(AlertView, NeverDestroysOnReturnAlone) {
    confirm();
    key(app_, Qt::Key_Return);
    EXPECT_EQ(notes_, QStringList{QStringLiteral("cancel")});
}

TEST_F(AlertView, ReachesEveryButtonByTab) {
    confirm();
    key(app_, Qt::Key_Tab);
    EXPECT_TRUE(button("Clean")->hasActiveFocus());
    key(app_, Qt::Key_Space);
    EXPECT_EQ(notes_, QStringList{QStringLiteral("clean")});
}

TEST_F(AlertView, KeepsTheFocusToItself) {
    confirm();
    for (int i = 0; i < 8; ++i) {
        key(app_, Qt::Key_Tab);
        const QQuickItem* focused = app_.window().activeFocusItem();
        ASSERT_NE(focused, nullptr);
        EXPECT_TRUE(app_.item("presenterHost")->isAncestorOf(focused));
    }
}

TEST_F(AlertView, LetsNoPressThrough) {
    confirm();
    click(app_, "scan");
    click(app_, "tab1");
    EXPECT_TRUE(screen(app_).notes.isEmpty());
    EXPECT_EQ(app_.scene().tabBarController()->selectedIndex(), 0);
    EXPECT_TRUE(app_.presenter().active());
}

TEST_F(AlertView, GivesTheFocusBackWhenItGoes) {
    app_.item("scan")->forceActiveFocus(Qt::TabFocusReason);
    confirm();
    key(app_, Qt::Key_Escape);
    ASSERT_TRUE(faded());
    EXPECT_TRUE(app_.item("scan")->hasActiveFocus());
}

TEST_F(AlertView, TakesATextAndAddsItOnReturn) {
    auto alert = std::make_unique<AlertController>(AlertController::Alert, QStringLiteral("Add"));
    QString added;
    AlertController* held = alert.get();
    alert->addTextField(QStringLiteral("/path"))
        .addAction(QStringLiteral("Add"), AlertAction::Default, [&, held] { added = held->text(); })
        .addAction(QStringLiteral("Cancel"), AlertAction::Cancel);
    app_.presenter().present(std::move(alert));
    for (const char letter : std::string("/var/x"))
        QTest::keyClick(&app_.window(), letter);
    key(app_, Qt::Key_Return);
    EXPECT_EQ(added, QLatin1String("/var/x"));
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(AlertView, CancelsASheetByATapBesideIt) {
    sheet();
    tap(app_, {195, 60});
    EXPECT_EQ(notes_, QStringList{QStringLiteral("cancel")});
}

TEST_F(AlertView, DoesNotCancelAnAlertByATapBesideIt) {
    confirm();
    tap(app_, {195, 60});
    EXPECT_TRUE(app_.presenter().active());
}

TEST_F(AlertView, ChoosesFromASheetByKeyboard) {
    sheet();
    key(app_, Qt::Key_Return);
    EXPECT_EQ(notes_, QStringList{QStringLiteral("one")});
}

TEST_F(AlertView, ShowsWhatAnActionPresentsNext) {
    auto first = std::make_unique<AlertController>(AlertController::Alert, QStringLiteral("First"));
    first->addAction(QStringLiteral("More"), AlertAction::Default, [this] { confirm(); });
    app_.presenter().present(std::move(first));
    QTest::mouseClick(&app_.window(), Qt::LeftButton, {}, TestApp::middleOf(button("More")));
    EXPECT_TRUE(app_.presenter().active());
    ASSERT_TRUE(waitUntil([&] { return app_.presenter().rowCount() == 1; }));
    key(app_, Qt::Key_Escape);
    EXPECT_EQ(notes_, QStringList{QStringLiteral("cancel")});
}

TEST(AlertViewOnATablet, PointsAtItsAnchor) {
    TestApp app({.idiom = platform::Idiom::Pad});
    app.show({820, 1180});
    auto alert =
        std::make_unique<AlertController>(AlertController::ActionSheet, QStringLiteral("Choose"));
    alert->addAction(QStringLiteral("One"))
        .addAction(QStringLiteral("Cancel"), AlertAction::Cancel);
    alert->setAnchor({20, 200, 300, 50});
    app.presenter().present(std::move(alert));
    const QQuickItem* popover = app.item("popover");
    ASSERT_NE(popover, nullptr);
    EXPECT_DOUBLE_EQ(popover->y(), 262.0);
    EXPECT_DOUBLE_EQ(popover->x(), 12.0);
}

}  // namespace
}  // namespace sweepwright::test
