#include <gtest/gtest.h>

#include "ui/presentation/NavigationController.h"
#include "ui/presentation/Presenter.h"

namespace sweepwright::ui {
namespace {

// Notes what becomes of it.
class Screen : public ScreenController {
  public:
    Screen(QStringList& notes, const char* name) : ScreenController(QUrl()), notes_(notes) {
        setTitle(QString::fromLatin1(name));
    }

  protected:
    void viewDidLoad() override { note("loaded"); }
    void viewWillAppear() override { note("appears"); }
    void viewWillDisappear() override { note("disappears"); }

  private:
    void note(const char* what) { notes_.append(title() + QLatin1Char(' ') + QLatin1String(what)); }
    QStringList& notes_;
};

class NavigationControllerTest : public testing::Test {
  protected:
    QStringList taken() { return std::exchange(notes_, {}); }

    QStringList notes_;
    Presenter presenter_;
    NavigationController navigation_{std::make_unique<Screen>(notes_, "root"), presenter_};
};

TEST_F(NavigationControllerTest, LoadsItsRootOnceAndShowsItWithItself) {
    EXPECT_EQ(taken(), QStringList{QStringLiteral("root loaded")});
    navigation_.setVisible(true);
    EXPECT_EQ(taken(), QStringList{QStringLiteral("root appears")});
    EXPECT_EQ(navigation_.root()->navigationController(), &navigation_);
    EXPECT_EQ(navigation_.root()->presenter(), &presenter_);
}

TEST_F(NavigationControllerTest, TellsBothScreensOfAPushAndAPop) {
    navigation_.setVisible(true);
    taken();
    navigation_.push(std::make_unique<Screen>(notes_, "next"));
    const QStringList pushed{QStringLiteral("next loaded"), QStringLiteral("root disappears"),
                             QStringLiteral("next appears")};
    EXPECT_EQ(taken(), pushed);
    EXPECT_EQ(navigation_.depth(), 2);
    navigation_.pop();
    const QStringList popped{QStringLiteral("next disappears"), QStringLiteral("root appears")};
    EXPECT_EQ(taken(), popped);
    EXPECT_EQ(navigation_.depth(), 1);
    EXPECT_EQ(navigation_.rowCount(), 1);
}

TEST_F(NavigationControllerTest, NeverPopsItsRoot) {
    navigation_.pop();
    navigation_.popToRoot();
    EXPECT_EQ(navigation_.depth(), 1);
}

TEST_F(NavigationControllerTest, ShowsNothingOfAHiddenTab) {
    taken();
    navigation_.push(std::make_unique<Screen>(notes_, "next"));
    EXPECT_EQ(taken(), QStringList{QStringLiteral("next loaded")});
}

TEST_F(NavigationControllerTest, KeepsAPoppedScreenForAViewThatSlidesItAway) {
    navigation_.setDrawn(true);
    navigation_.push(std::make_unique<Screen>(notes_, "next"));
    navigation_.pop();
    EXPECT_EQ(navigation_.depth(), 1);
    ASSERT_EQ(navigation_.rowCount(), 2);
    EXPECT_TRUE(navigation_.data(navigation_.index(1), NavigationController::LeavingRole).toBool());
    EXPECT_EQ(navigation_.top(), navigation_.root());
    navigation_.removeLeft();
    EXPECT_EQ(navigation_.rowCount(), 1);
}

TEST_F(NavigationControllerTest, PopsAllToTheRoot) {
    for (const char* name : {"a", "b", "c"})
        navigation_.push(std::make_unique<Screen>(notes_, name));
    navigation_.popToRoot();
    EXPECT_EQ(navigation_.depth(), 1);
    EXPECT_EQ(navigation_.rowCount(), 1);
}

TEST_F(NavigationControllerTest, OffersTheTitleBelowForTheWayBack) {
    navigation_.push(std::make_unique<Screen>(notes_, "next"));
    EXPECT_EQ(
        navigation_.data(navigation_.index(1), NavigationController::BackTitleRole).toString(),
        QLatin1String("root"));
}

}  // namespace
}  // namespace sweepwright::ui
