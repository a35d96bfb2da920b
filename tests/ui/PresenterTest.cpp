#include <QCoreApplication>
#include <QPointer>

#include <gtest/gtest.h>

#include "ui/presentation/Presenter.h"

namespace sweepwright::ui {
namespace {

std::unique_ptr<AlertController> alert(const char* title) {
    return std::make_unique<AlertController>(AlertController::Alert, QString::fromLatin1(title));
}

TEST(Presenter, ShowsAnAlertUntilAnActionIsChosenAndThenRunsIt) {
    Presenter presenter;
    bool aloneThen = false;
    auto shown = alert("Confirm");
    shown->addAction(QStringLiteral("Clean"), AlertAction::Destructive,
                     [&] { aloneThen = !presenter.active(); });
    AlertController* held = presenter.present(std::move(shown));
    EXPECT_TRUE(presenter.active());
    EXPECT_EQ(presenter.alert(), held);
    held->choose(held->action(QStringLiteral("Clean")));
    EXPECT_TRUE(aloneThen);
    EXPECT_EQ(presenter.alert(), nullptr);
    EXPECT_EQ(presenter.rowCount(), 0);
}

TEST(Presenter, RunsAnActionOnce) {
    Presenter presenter;
    int runs = 0;
    auto shown = alert("Once");
    shown->addAction(QStringLiteral("OK"), AlertAction::Default, [&] { ++runs; });
    AlertController* held = presenter.present(std::move(shown));
    AlertAction* action = held->action(QStringLiteral("OK"));
    held->choose(action);
    held->choose(action);
    EXPECT_EQ(runs, 1);
}

TEST(Presenter, LetsAnActionPresentTheNextAlert) {
    Presenter presenter;
    auto first = alert("First");
    first->addAction(QStringLiteral("Next"), AlertAction::Default,
                     [&] { presenter.present(alert("Second")); });
    AlertController* held = presenter.present(std::move(first));
    held->choose(held->actions().first());
    ASSERT_NE(presenter.alert(), nullptr);
    EXPECT_EQ(presenter.alert()->title(), QLatin1String("Second"));
}

TEST(Presenter, RunsTheCompletionWhenAnAlertIsDismissed) {
    Presenter presenter;
    AlertController* busy = presenter.present(alert("Cleaning"));
    bool completed = false;
    presenter.dismiss(busy, [&] { completed = !presenter.active(); });
    EXPECT_TRUE(completed);
}

TEST(Presenter, KeepsWhatLeavesForAViewThatFadesIt) {
    Presenter presenter;
    presenter.setDrawn(true);
    AlertController* held = presenter.present(alert("Fading"));
    presenter.dismiss(held);
    EXPECT_FALSE(presenter.active());
    EXPECT_EQ(presenter.alert(), nullptr);
    ASSERT_EQ(presenter.rowCount(), 1);
    EXPECT_TRUE(presenter.data(presenter.index(0), Presenter::LeavingRole).toBool());
    presenter.removeLeft(held);
    EXPECT_EQ(presenter.rowCount(), 0);
}

TEST(Presenter, DestroysAnAlertThatIsGone) {
    Presenter presenter;
    const QPointer<AlertController> held = presenter.present(alert("Gone"));
    presenter.dismiss(held);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(held.isNull());
}

TEST(Presenter, FindsTheScreenUnderAnAlert) {
    Presenter presenter;
    ScreenController* screen = presenter.present(std::make_unique<ScreenController>(QUrl()));
    presenter.present(alert("Over it"));
    EXPECT_EQ(presenter.screen(), screen);
    EXPECT_EQ(presenter.alert()->title(), QLatin1String("Over it"));
    EXPECT_EQ(screen->presenter(), &presenter);
    EXPECT_TRUE(screen->visible());
}

TEST(AlertController, CancelChoosesTheCancelActionAndNothingElse) {
    Presenter presenter;
    AlertController* stubborn = presenter.present(alert("No way out"));
    stubborn->addAction(QStringLiteral("OK"));
    stubborn->cancel();
    EXPECT_TRUE(presenter.active());
    stubborn->addAction(QStringLiteral("Cancel"), AlertAction::Cancel);
    stubborn->cancel();
    EXPECT_FALSE(presenter.active());
}

TEST(AlertController, HoldsWhatAPersonTypes) {
    auto shown = alert("Add");
    shown->addTextField(QStringLiteral("/path"));
    shown->setText(QStringLiteral("/var/tmp"));
    EXPECT_TRUE(shown->hasTextField());
    EXPECT_EQ(shown->text(), QLatin1String("/var/tmp"));
}

}  // namespace
}  // namespace sweepwright::ui
