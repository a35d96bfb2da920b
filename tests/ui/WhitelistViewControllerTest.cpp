#include "ui/AppScreensTest.h"

namespace sweepwright::test {
namespace {

using ui::AppListViewController;
using ui::SwipeAction;
using ui::WhitelistViewController;
using Names = std::vector<std::string>;

class WhitelistViewControllerTest : public AppScreensTest {
  protected:
    // The screen, pushed on the visible tab as settings do it, and loaded.
    WhitelistViewController& push() {
        app_.scene().sceneWillConnect();
        app_.scene().tabBarController()->setSelectedIndex(2);
        navigation().push(std::make_unique<WhitelistViewController>(app_.services()));
        auto& screen = *qobject_cast<WhitelistViewController*>(navigation().top());
        finish(screen);
        return screen;
    }
    ui::NavigationController& navigation() { return app_.scene().tabBarController()->at(2); }
    void finish(WhitelistViewController& screen) {
        runUntil([&] { return !screen.loading(); });
    }
    static QString text(const char* utf8) { return QString::fromUtf8(utf8); }
    // How many third-party scans a log tells of.
    static int looksIn(const platform::LogCapture& log) {
        int looks = 0;
        for (const std::string& line : log.lines())
            looks += line.starts_with("✅ 找到 ") ? 1 : 0;
        return looks;
    }
};

TEST_F(WhitelistViewControllerTest, ShowsTheProtectedAppsThatAreInstalledByName) {
    installFew();
    protect("org.example.charlie");
    protect("com.example.alpha");
    protect("com.example.uninstalled");
    protect("com.apple.maps");
    WhitelistViewController& screen = push();
    EXPECT_EQ(titles(*screen.apps()), (Names{"Alpha", "Bravo", "Charlie"}));
    EXPECT_EQ(screen.apps()->at(0).detail, text("✅ 已保护 | 缓存: 32.00 MB"));
    EXPECT_EQ(screen.apps()->at(1).detail, text("✅ 已保护 | 缓存: 20.00 MB"));
    EXPECT_TRUE(screen.emptyText().isEmpty());
    EXPECT_TRUE(isProtected("com.example.uninstalled"));
}

TEST_F(WhitelistViewControllerTest, SortsByPlainComparisonAndByTheIdentifierWhereThereIsNoName) {
    for (const char* name : {"b", "B", "a", "Z"}) {
        const std::string identifier = std::string("com.example.") + name;
        install(app_.device, {identifier, name, kMiB, 0});
        protect(identifier.c_str());
    }
    app_.device.file("/var/mobile/Containers/Data/Application/aa.nameless/tmp/file", 5);
    protect("aa.nameless");
    EXPECT_EQ(titles(*push().apps()), (Names{"B", "Z", "a", "aa.nameless", "b"}));
}

TEST_F(WhitelistViewControllerTest, SpeaksChineseInEveryLanguage) {
    WhitelistViewController& screen = push();
    EXPECT_EQ(screen.title(), text("清理白名单"));
    EXPECT_EQ(screen.emptyText(), text("暂无白名单应用\n\n点击右上角 + 按钮添加应用"));
    EXPECT_TRUE(screen.prefersLargeTitles());
    EXPECT_EQ(screen.rightBarButtonItem()->symbol(), text("plus"));
    (void)app_.services().language.setLanguage("zh-Hans");
    EXPECT_EQ(screen.title(), text("清理白名单"));
}

TEST_F(WhitelistViewControllerTest, DoesNotLookForAppsWhenNoneIsProtected) {
    installFew();
    (void)app_.services().appWhitelist.clearAllWhitelistedApps();
    finishLoading();
    const platform::LogCapture log;
    WhitelistViewController screen(app_.services());
    screen.load();
    EXPECT_FALSE(screen.loading());
    EXPECT_FALSE(screen.emptyText().isEmpty());
    EXPECT_EQ(screen.apps()->rowCount(), 0);
    screen.setVisible(true);
    EXPECT_FALSE(screen.loading());
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(WhitelistViewControllerTest, HidesTheEmptyTextWhileItLoadsAndShowsItWhenNothingIsFound) {
    protect("com.example.uninstalled");
    WhitelistViewController& screen = push();
    EXPECT_FALSE(screen.emptyText().isEmpty());
    screen.loadWhitelistedApps();
    EXPECT_TRUE(screen.loading());
    EXPECT_TRUE(screen.emptyText().isEmpty());
    finish(screen);
    EXPECT_FALSE(screen.emptyText().isEmpty());
}

TEST_F(WhitelistViewControllerTest, LoadsWhenShownForTheFirstTimeAndAtEveryAppearance) {
    installFew();
    finishLoading();
    WhitelistViewController screen(app_.services());
    const platform::LogCapture log;
    screen.load();
    finish(screen);
    EXPECT_EQ(looksIn(log), 1);
    for (int visit = 2; visit < 4; ++visit) {
        screen.setVisible(true);
        finish(screen);
        EXPECT_EQ(looksIn(log), visit);
        screen.setVisible(false);
    }
}

TEST_F(WhitelistViewControllerTest, ListensForChangesOnlyWhileVisible) {
    installFew();
    WhitelistViewController& screen = push();
    EXPECT_EQ(screen.apps()->rowCount(), 1);
    protect("com.example.alpha");
    app_.notifications.post("WhitelistUpdated");
    EXPECT_TRUE(screen.loading());
    finish(screen);
    EXPECT_EQ(screen.apps()->rowCount(), 2);
    screen.setVisible(false);
    app_.notifications.post("WhitelistUpdated");
    EXPECT_FALSE(screen.loading());
}

TEST_F(WhitelistViewControllerTest, GivesEveryRowTheCleanersOwnIcon) {
    install(app_.device, {"com.example.alpha", "Alpha", kMiB, 0, plainIcon(255, 0, 0)});
    installFew();
    protect("com.example.alpha");
    WhitelistViewController& screen = push();
    const QString picture = screen.apps()->at(0).picture;
    EXPECT_EQ(screen.apps()->at(1).picture, picture);
    const auto drawn = app_.icons.image(picture.section(QLatin1Char('/'), -1).toULongLong());
    ASSERT_TRUE(drawn.has_value());
    EXPECT_GT(drawn->width, 1U);
}

TEST_F(WhitelistViewControllerTest, PrefersThePictureOfTheResourcesItselfAndDoesWithoutAny) {
    TemporaryDevice resources;
    const platform::ResourceBundle bundle(resources.root());
    ui::ScreenServices services{app_.services().device,
                                app_.services().files,
                                app_.services().defaults,
                                app_.services().notifications,
                                app_.services().mainQueue,
                                app_.services().engine,
                                app_.services().storage,
                                app_.services().apps,
                                app_.services().pathWhitelist,
                                app_.services().appWhitelist,
                                app_.services().customPaths,
                                app_.services().history,
                                app_.services().language,
                                app_.services().texts,
                                app_.services().opener,
                                bundle,
                                app_.icons};
    installFew();
    const auto red = [&]() -> int {
        WhitelistViewController screen(services);
        screen.load();
        finish(screen);
        const QString picture = screen.apps()->at(0).picture;
        if (picture.isEmpty()) return -1;
        return app_.icons.image(picture.section(QLatin1Char('/'), -1).toULongLong())
            .value()
            .rgba[0];
    };
    EXPECT_EQ(red(), -1);
    resources.fileWith("/icon/icon1.png", plainIcon(20, 0, 0));
    EXPECT_EQ(red(), 20);
    resources.fileWith("/icon1.png", plainIcon(10, 0, 0));
    EXPECT_EQ(red(), 10);
}

TEST_F(WhitelistViewControllerTest, OffersTheRemovalInBothForms) {
    installFew();
    const WhitelistViewController& screen = push();
    std::vector<SwipeAction> expected{{text("移除"), SwipeAction::Style::Destructive,
                                       text("minus.circle.fill"), text("systemOrange"),
                                       SwipeAction::Effect::Remove}};
    EXPECT_EQ(screen.trailingSwipeActions(0), expected);
    expected[0].symbol.clear();
    EXPECT_EQ(screen.editActions(0), expected);
}

TEST_F(WhitelistViewControllerTest, AsksBeforeItTakesAnAppOffTheList) {
    installFew();
    WhitelistViewController& screen = push();
    QSignalSpy ended(&screen, &WhitelistViewController::swipeActionEnded);
    screen.performSwipeAction(0, 0);
    EXPECT_EQ(alert().title(), text("确认移除"));
    EXPECT_EQ(alert().message(),
              text("确定要将 Bravo 从白名单移除吗？\n移除后，该应用的缓存可被一键清理。"));
    EXPECT_EQ(actionTitles(alert()), (Names{"移除", "取消"}));
    EXPECT_EQ(alert().actions()[0]->style(), ui::AlertAction::Destructive);
    EXPECT_EQ(alert().actions()[1]->style(), ui::AlertAction::Cancel);
    choose("取消");
    ASSERT_EQ(ended.count(), 1);
    EXPECT_FALSE(ended[0][0].toBool());
    EXPECT_TRUE(isProtected("com.example.bravo"));
    EXPECT_FALSE(screen.loading());
}

TEST_F(WhitelistViewControllerTest, NamesAnAppWithoutNameByItsIdentifierWhenItAsks) {
    app_.device.file("/var/mobile/Containers/Data/Application/net.nameless/tmp/file", 5);
    protect("net.nameless");
    push().performSwipeAction(0, 0);
    EXPECT_TRUE(alert().message().startsWith(text("确定要将 net.nameless 从")));
}

TEST_F(WhitelistViewControllerTest, TakesAnAppOffTheListAndLoadsTwiceToTheSameEnd) {
    installFew();
    protect("com.example.alpha");
    WhitelistViewController& screen = push();
    int told = 0;
    const auto observer =
        app_.notifications.observe("WhitelistUpdated", [&](const auto&) { ++told; });
    QSignalSpy ended(&screen, &WhitelistViewController::swipeActionEnded);
    const platform::LogCapture log;
    screen.performSwipeAction(0, 0);
    choose("移除");
    EXPECT_FALSE(isProtected("com.example.alpha"));
    EXPECT_EQ(told, 1);
    ASSERT_EQ(ended.count(), 1);
    EXPECT_TRUE(ended[0][0].toBool());
    runUntil([&] { return looksIn(log) == 1; });
    EXPECT_EQ(titles(*screen.apps()), (Names{"Bravo"}));
    EXPECT_TRUE(screen.loading());
    finish(screen);
    EXPECT_EQ(looksIn(log), 2);
    EXPECT_EQ(titles(*screen.apps()), (Names{"Bravo"}));
}

TEST_F(WhitelistViewControllerTest, ShowsTheEmptyTextWhenTheLastAppIsTakenOff) {
    installFew();
    WhitelistViewController& screen = push();
    screen.performSwipeAction(0, 0);
    choose("移除");
    EXPECT_FALSE(screen.loading());
    EXPECT_FALSE(screen.emptyText().isEmpty());
    EXPECT_EQ(screen.apps()->rowCount(), 0);
}

TEST_F(WhitelistViewControllerTest, ReportsThatTheListCouldNotBeChanged) {
    installFew();
    WhitelistViewController& screen = push();
    screen.performSwipeAction(0, 0);
    damageDefaults();
    QSignalSpy ended(&screen, &WhitelistViewController::swipeActionEnded);
    choose("移除");
    EXPECT_TRUE(isProtected("com.example.bravo"));
    ASSERT_EQ(ended.count(), 1);
    EXPECT_FALSE(ended[0][0].toBool());
}

TEST_F(WhitelistViewControllerTest, IgnoresASwipeActionThatIsNotThere) {
    installFew();
    WhitelistViewController& screen = push();
    screen.performSwipeAction(0, 1);
    screen.performSwipeAction(1, 0);
    screen.performSwipeAction(-1, 0);
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(WhitelistViewControllerTest, LeadsToANewListOfAllAppsAndShowsWhatWasProtectedThere) {
    installFew();
    WhitelistViewController& screen = push();
    screen.rightBarButtonItem()->trigger();
    auto* apps = qobject_cast<AppListViewController*>(navigation().top());
    ASSERT_NE(apps, nullptr);
    EXPECT_NE(apps, &list());
    runUntil([&] { return !apps->loading(); });
    apps->performSwipeAction(0, 1);
    EXPECT_TRUE(isProtected("com.example.alpha"));
    navigation().pop();
    finish(screen);
    EXPECT_EQ(titles(*screen.apps()), (Names{"Alpha", "Bravo"}));
}

TEST_F(WhitelistViewControllerTest, DropsAResultThatComesWhenItIsGone) {
    installFew();
    {
        WhitelistViewController gone(app_.services());
        gone.load();
        EXPECT_TRUE(gone.loading());
    }
    reload();
    EXPECT_EQ(list().allApps().size(), 5U);
}

}  // namespace
}  // namespace sweepwright::test
