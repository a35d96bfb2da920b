#include <gtest/gtest.h>

#include "platform/plist/PropertyList.h"
#include "ui/presentation/Addresses.h"
#include "ui/support/TestApp.h"
#include "ui/welcome/WelcomeViewController.h"

namespace sweepwright::ui {
namespace {

class WelcomeTest : public testing::Test {
  protected:
    WelcomeViewController& present() {
        const ScreenServices& services = app_.services();
        return *qobject_cast<WelcomeViewController*>(
            app_.presenter().present(std::make_unique<WelcomeViewController>(
                services.texts, services.defaults, services.opener)));
    }
    bool remembered() { return app_.services().defaults.boolean("hasShownWelcome"); }

    test::TestApp app_{{.welcomeShown = false}};
};

TEST_F(WelcomeTest, RemembersThatItWasShownAndGoesWhenAPersonGetsStarted) {
    present().closeButtonTapped();
    EXPECT_TRUE(remembered());
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(WelcomeTest, OpensThePagesAndStays) {
    WelcomeViewController& welcome = present();
    welcome.websiteButtonTapped();
    welcome.wechatButtonTapped();
    welcome.githubButtonTapped();
    ASSERT_EQ(app_.opener.opened.size(), 3U);
    EXPECT_EQ(app_.opener.opened[0].toString().toStdString(), addresses::kWebsite);
    EXPECT_EQ(app_.opener.opened[1].toString().toStdString(), addresses::kWeChat);
    EXPECT_EQ(app_.opener.opened[2].toString().toStdString(), addresses::kRepository);
    EXPECT_TRUE(app_.presenter().active());
    EXPECT_FALSE(remembered());
}

TEST_F(WelcomeTest, StaysWhenAPageCannotBeOpened) {
    app_.opener.opens = false;
    present().websiteButtonTapped();
    EXPECT_TRUE(app_.presenter().active());
    EXPECT_EQ(app_.presenter().alert(), nullptr);
    EXPECT_FALSE(remembered());
}

TEST_F(WelcomeTest, HasATextForEveryKey) {
    const WelcomeViewController& welcome = present();
    EXPECT_EQ(welcome.greeting(), QLatin1String("Welcome to Sweepwright"));
    EXPECT_NE(welcome.subtitle(), QLatin1String("Welcome Subtitle"));
    EXPECT_NE(welcome.notice(), QLatin1String("Welcome Notice"));
    EXPECT_EQ(welcome.closeTitle(), QLatin1String("Get Started"));
}

}  // namespace
}  // namespace sweepwright::ui
