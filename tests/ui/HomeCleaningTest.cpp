#include <cerrno>
#include <filesystem>

#include "platform/plist/PropertyList.h"
#include "ui/support/HomeTest.h"

namespace sweepwright::test {
namespace {

using ui::AlertController;
using ui::ViewController;

class HomeCleaningTest : public HomeTest {
  protected:
    void SetUp() override {
        ASSERT_TRUE(settle(app_));
        app_.device.file("/var/mobile/Library/Cookies/Cookies.binarycookies", 2048);
        app_.device.file("/var/mobile/Library/Logs/app.log", 1024);
        app_.device.file("/var/mobile/Documents/kept.txt", 99);
        data_ = addApp(app_.device, "com.example.big", "Big", 4096);
        ASSERT_TRUE(rescan(app_));
    }
    ViewController& screen() { return screenOf(app_); }
    QString text(const char* key) { return app_.services().texts(key); }
    bool exists(const std::string& path) { return app_.device.exists(path); }
    // The protection lists can't be read any more.
    void damageLists() {
        app_.device.fileWith(app_.core.device.userDefaultsFile(), "bplist00 and no more");
    }
    bool isScanning(const ui::CleanItemCardView& card) {
        return card.sizeText() == text("Scanning...");
    }

    TestApp app_;
    std::string data_;
};

TEST_F(HomeCleaningTest, ACardsButtonCleansItsCategoryWithoutAskingAndScansAgain) {
    Q_EMIT screen().cookieCard().cleanTapped();
    const AlertController* progress = app_.presenter().alert();
    ASSERT_NE(progress, nullptr);
    EXPECT_EQ(progress->title(), QStringLiteral("Cleaning"));
    EXPECT_EQ(progress->message(), QStringLiteral("\n\n\n"));
    EXPECT_TRUE(progress->busy());
    EXPECT_TRUE(progress->actions().isEmpty());
    EXPECT_EQ(progress->cancelAction(), nullptr);

    ASSERT_TRUE(alertComes(app_, "Clean Completed"));
    EXPECT_EQ(app_.presenter().rowCount(), 1);
    EXPECT_EQ(app_.presenter().alert()->message(), QStringLiteral("2.0 KB freed."));
    EXPECT_EQ(titles(*app_.presenter().alert()), QStringList(QStringLiteral("OK")));
    EXPECT_FALSE(exists("/var/mobile/Library/Cookies/Cookies.binarycookies"));
    EXPECT_TRUE(exists("/var/mobile/Library/Logs/app.log"));
    EXPECT_TRUE(isScanning(screen().logCard()));
    ASSERT_TRUE(until(app_, [&] { return isScanning(screen().appCacheCard()); }));
    ASSERT_TRUE(settle(app_));
    EXPECT_EQ(screen().cookieCard().sizeText(), QStringLiteral("0 B"));
    EXPECT_EQ(screen().cookieCard().fileList()->rowCount(), 0);
    EXPECT_EQ(screen().logCard().sizeText(), QStringLiteral("1.0 KB"));
}

TEST_F(HomeCleaningTest, EachCardsButtonCleansItsOwnCategory) {
    app_.device.file(app_.core.temporary("a.tmp"), 1);
    app_.device.file("/var/mobile/Library/Caches/com.apple.test/a", 1);
    const struct {
        void (ViewController::*tap)();
        CleanType type;
    } buttons[] = {{&ViewController::cleanTempTapped, CleanType::TempFiles},
                   {&ViewController::cleanCookieTapped, CleanType::Cookies},
                   {&ViewController::cleanLogTapped, CleanType::SystemLogs},
                   {&ViewController::cleanCacheTapped, CleanType::Cache}};
    for (const auto& button : buttons) {
        (screen().*button.tap)();
        ASSERT_TRUE(alertComes(app_, "Clean Completed"));
        choose(app_, "OK");
        ASSERT_FALSE(app_.core.history.getAllCleanHistory().empty());
        EXPECT_EQ(app_.core.history.getAllCleanHistory().front().cleanType, button.type);
    }
}

// What is about a path that ends so fails to go.
void keep(TestApp& app, const std::string& ending) {
    app.core.files.failWhere(
        [ending](Operation operation, const std::string& path) {
            return operation == Operation::RemoveFileAt && path.ends_with(ending);
        },
        EPERM);
}

TEST_F(HomeCleaningTest, TheOutcomeTellsInItsSecondLineWhatCouldNotBeRemoved) {
    app_.device.file("/var/mobile/Library/Cookies/other", 10);
    keep(app_, "/Cookies.binarycookies");
    screen().cleanCookieTapped();
    ASSERT_TRUE(alertComes(app_, "Clean Completed"));
    EXPECT_EQ(app_.presenter().alert()->message(),
              QStringLiteral("10 B freed.\n"
                             "Could not be removed: 1. First: /var/mobile/Library/Cookies/"
                             "Cookies.binarycookies: Operation not permitted"));
    choose(app_, "OK");
    ASSERT_TRUE(settle(app_));

    ASSERT_TRUE(app_.services().language.setLanguage("zh-Hans"));
    screen().cleanCookieTapped();
    ASSERT_TRUE(alertComes(app_, "清理完成"));
    EXPECT_EQ(app_.presenter().alert()->message(),
              QStringLiteral("已释放 0 B 空间。\n"
                             "1 个项目无法删除。第一个：/var/mobile/Library/Cookies/"
                             "Cookies.binarycookies: Operation not permitted"));
}

TEST_F(HomeCleaningTest, TheOutcomeOfTheAppsSaysThatItsFigureCountsWhatStayed) {
    keep(app_, "/Library/Caches/cache.bin");
    screen().cleanAppCacheTapped();
    choose(app_, "Clean");
    ASSERT_TRUE(alertComes(app_, "Clean Completed"));
    const QString message = app_.presenter().alert()->message();
    EXPECT_TRUE(message.startsWith(
        QStringLiteral("4.0 KB freed.\nThis is what was there before. Could not be removed: 1.")))
        << message.toStdString();
}

TEST_F(HomeCleaningTest, TheOutcomeTellsOfFoldersThatCouldNotBeReadAndOfAMissingRecord) {
    app_.device.file("/var/mobile/Library/WebKit/a", 10);
    const std::string lock = app_.core.device.userDefaultsFile() + ".lock";
    std::filesystem::remove(app_.device.host(lock));
    app_.device.folder(lock);
    app_.core.files.failWhere(
        [](Operation operation, const std::string& path) {
            return operation == Operation::OpenDirectory && path == "/var/mobile/Library/Cookies";
        },
        EACCES);
    screen().cleanCookieTapped();
    ASSERT_TRUE(alertComes(app_, "Clean Completed"));
    const QStringList lines = app_.presenter().alert()->message().split(u'\n');
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines[0], QStringLiteral("10 B freed."));
    EXPECT_EQ(lines[1], QStringLiteral("Folders that could not be read: 1. First: "
                                       "/var/mobile/Library/Cookies: Permission denied"));
    EXPECT_TRUE(lines[2].startsWith(
        QStringLiteral("This clean is missing from the history and the statistics. Reason: ")));
}

TEST_F(HomeCleaningTest, TheProgressAlertFollowsTheClean) {
    QStringList messages;
    std::vector<double> fractions;
    screen().cleanLogTapped();
    AlertController* progress = app_.presenter().alert();
    QObject::connect(progress, &AlertController::messageChanged, &screen(),
                     [&] { messages.append(progress->message()); });
    QObject::connect(progress, &AlertController::progressChanged, &screen(),
                     [&] { fractions.push_back(progress->progress()); });
    ASSERT_TRUE(alertComes(app_, "Clean Completed"));
    ASSERT_FALSE(messages.isEmpty());
    EXPECT_EQ(messages.last(), QStringLiteral("Cleaning 100%\napp.log"));
    ASSERT_FALSE(fractions.empty());
    EXPECT_DOUBLE_EQ(fractions.back(), 1.0);
}

TEST_F(HomeCleaningTest, ACleanThatFreesNothingSaysSo) {
    screen().cleanTempTapped();
    ASSERT_TRUE(alertComes(app_, "Clean Completed"));
    EXPECT_EQ(app_.presenter().alert()->message(), QStringLiteral("0 B freed."));
    EXPECT_TRUE(app_.core.history.getAllCleanHistory().empty());
}

TEST_F(HomeCleaningTest, ACleanThatFailsTellsWhyAndDoesNotScanAgain) {
    damageLists();
    screen().cleanCookieTapped();
    ASSERT_TRUE(alertComes(app_, "Clean Failed"));
    EXPECT_EQ(app_.presenter().rowCount(), 1);
    EXPECT_FALSE(app_.presenter().alert()->message().isEmpty());
    EXPECT_EQ(titles(*app_.presenter().alert()), QStringList(QStringLiteral("OK")));
    EXPECT_EQ(screen().cookieCard().sizeText(), QStringLiteral("2.0 KB"));
    EXPECT_TRUE(exists("/var/mobile/Library/Cookies/Cookies.binarycookies"));
}

TEST_F(HomeCleaningTest, ASecondTapWhileACleanRunsStartsNoOther) {
    screen().cleanCookieTapped();
    screen().cleanCookieTapped();
    screen().cleanAllTapped();
    screen().cleanAppCacheTapped();
    screen().scanButtonTapped();
    screen().cleanItemCardViewDidTapFilePath(screen().cacheCard(), "/var");
    EXPECT_EQ(app_.presenter().rowCount(), 1);
    EXPECT_FALSE(screen().scanning());
    ASSERT_TRUE(alertComes(app_, "Clean Completed"));
    EXPECT_EQ(app_.presenter().rowCount(), 1);
    EXPECT_EQ(app_.core.statistics.totals().cleanCount, 1);
}

TEST_F(HomeCleaningTest, CleanEverythingAsksFirst) {
    screen().cleanAllTapped();
    const AlertController* asked = app_.presenter().alert();
    ASSERT_NE(asked, nullptr);
    EXPECT_EQ(asked->title(), text("Confirm Clean"));
    EXPECT_EQ(asked->message(), text("Confirm Clean Message"));
    EXPECT_EQ(titles(*asked), QStringList({text("Clean"), text("Cancel")}));
    EXPECT_EQ(asked->actions()[0]->style(), ui::AlertAction::Destructive);
    EXPECT_EQ(asked->actions()[1]->style(), ui::AlertAction::Cancel);
    choose(app_, "Cancel");
    EXPECT_FALSE(app_.presenter().active());
    EXPECT_TRUE(exists("/var/mobile/Library/Cookies/Cookies.binarycookies"));
}

TEST_F(HomeCleaningTest, CleanEverythingCleansAllCategories) {
    screen().cleanAllTapped();
    choose(app_, "Clean");
    ASSERT_NE(app_.presenter().alert(), nullptr);
    EXPECT_EQ(app_.presenter().alert()->title(), QStringLiteral("Cleaning"));
    ASSERT_TRUE(alertComes(app_, "Clean Completed"));
    EXPECT_EQ(app_.presenter().alert()->message(), QStringLiteral("3.0 KB freed."));
    EXPECT_FALSE(exists("/var/mobile/Library/Cookies/Cookies.binarycookies"));
    EXPECT_FALSE(exists("/var/mobile/Library/Logs/app.log"));
    EXPECT_TRUE(exists("/var/mobile/Documents/kept.txt"));
    EXPECT_TRUE(exists(data_ + "/Library/Caches/cache.bin"));
    ASSERT_EQ(app_.core.history.getAllCleanHistory().size(), 1U);
    EXPECT_EQ(app_.core.history.getAllCleanHistory().front().cleanType, CleanType::All);
}

TEST_F(HomeCleaningTest, TheAppsAreCleanedAfterAskingAndOnlyTheyAreScannedAgain) {
    Q_EMIT screen().appCacheCard().cleanTapped();
    const AlertController* asked = app_.presenter().alert();
    ASSERT_NE(asked, nullptr);
    EXPECT_EQ(asked->title(), text("Clean Third Party App Cache"));
    EXPECT_EQ(asked->message(), text("Clean Third Party App Cache Message"));
    EXPECT_EQ(titles(*asked), QStringList({text("Clean"), text("Cancel")}));
    EXPECT_EQ(asked->actions()[0]->style(), ui::AlertAction::Destructive);
    choose(app_, "Clean");

    AlertController* progress = app_.presenter().alert();
    ASSERT_NE(progress, nullptr);
    EXPECT_EQ(progress->title(), text("Clean Third Party App Cache"));
    EXPECT_EQ(progress->message(), QStringLiteral("\n\n\n"));
    EXPECT_TRUE(progress->busy());
    QStringList messages;
    QObject::connect(progress, &AlertController::messageChanged, &screen(),
                     [&] { messages.append(progress->message()); });
    ASSERT_TRUE(alertComes(app_, "Clean Completed"));
    ASSERT_FALSE(messages.isEmpty());
    EXPECT_TRUE(messages.last().startsWith(QStringLiteral("Cleaning 100%\n")));
    EXPECT_EQ(app_.presenter().alert()->message(), QStringLiteral("4.0 KB freed."));
    EXPECT_FALSE(exists(data_ + "/Library/Caches/cache.bin"));
    EXPECT_TRUE(isScanning(screen().appCacheCard()));
    EXPECT_EQ(screen().cookieCard().sizeText(), QStringLiteral("2.0 KB"));
    ASSERT_TRUE(settle(app_));
    EXPECT_EQ(screen().appCacheCard().sizeText(), QStringLiteral("0 B · Apps: 1"));
    EXPECT_EQ(screen().cookieCard().sizeText(), QStringLiteral("2.0 KB"));
}

TEST_F(HomeCleaningTest, CancelLeavesTheAppsAlone) {
    screen().cleanAppCacheTapped();
    choose(app_, "Cancel");
    EXPECT_FALSE(app_.presenter().active());
    EXPECT_TRUE(exists(data_ + "/Library/Caches/cache.bin"));
}

TEST_F(HomeCleaningTest, AFailedCleanOfTheAppsTellsWhy) {
    damageLists();
    screen().cleanAppCacheTapped();
    choose(app_, "Clean");
    ASSERT_TRUE(alertComes(app_, "Clean Failed"));
    EXPECT_FALSE(app_.presenter().alert()->message().isEmpty());
    EXPECT_TRUE(exists(data_ + "/Library/Caches/cache.bin"));
}

// --- A screen that goes while work is under way ---

class ClosedHome : public HomeCleaningTest {
  protected:
    std::unique_ptr<ViewController> open() {
        auto made = std::make_unique<ViewController>(app_.services());
        made->setPresenter(&app_.presenter());
        made->load();
        return made;
    }
    // Everything that was asked of the engine and the app manager before has been delivered.
    bool delivered() {
        bool engine = false;
        bool apps = false;
        app_.core.engine.scanWithCompletion([&](const ScanResult&) { engine = true; });
        if (!until(app_, [&] { return engine; })) return false;
        app_.services().apps.scanAllAppsWithCompletion([&](const auto&) { apps = true; });
        return until(app_, [&] { return apps; });
    }
};

TEST_F(ClosedHome, DropsWhatTheFirstScanFinds) {
    open().reset();
    EXPECT_TRUE(delivered());
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(ClosedHome, DropsTheResultOfAScan) {
    auto screen = open();
    screen->scanButtonTapped();
    screen.reset();
    EXPECT_TRUE(delivered());
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(ClosedHome, DropsTheListsThatAScanAskedFor) {
    auto screen = open();
    screen->scanButtonTapped();
    ASSERT_TRUE(alertComes(app_, "Scan Completed"));
    choose(app_, "OK");
    screen.reset();
    EXPECT_TRUE(delivered());
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(ClosedHome, DropsProgressAndEndOfAClean) {
    auto screen = open();
    screen->cleanCookieTapped();
    AlertController* progress = app_.presenter().alert();
    screen.reset();
    EXPECT_TRUE(delivered());
    EXPECT_EQ(app_.presenter().alert(), progress);
    EXPECT_EQ(progress->message(), QStringLiteral("\n\n\n"));
    EXPECT_FALSE(exists("/var/mobile/Library/Cookies/Cookies.binarycookies"));
}

TEST_F(ClosedHome, DropsWhatAnAlertOfItsAsksFor) {
    auto screen = open();
    screen->cleanAllTapped();
    screen.reset();
    choose(app_, "Clean");
    EXPECT_TRUE(delivered());
    EXPECT_TRUE(exists("/var/mobile/Library/Cookies/Cookies.binarycookies"));
}

TEST_F(ClosedHome, DropsTheHandOffThatAnAlertOfItsOffers) {
    auto screen = open();
    screen->cleanItemCardViewDidTapFilePath(screen->logCard(), "/var");
    screen.reset();
    choose(app_, "Open Filza");
    EXPECT_TRUE(app_.opener.openedAddresses.isEmpty());
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(ClosedHome, ShowsNothingWithoutAPresenter) {
    ViewController screen(app_.services());
    screen.cleanCookieTapped();
    screen.cleanAllTapped();
    EXPECT_TRUE(delivered());
    EXPECT_TRUE(exists("/var/mobile/Library/Cookies/Cookies.binarycookies"));
}

}  // namespace
}  // namespace sweepwright::test
