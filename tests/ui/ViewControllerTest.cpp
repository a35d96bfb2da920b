#include "platform/plist/PropertyList.h"
#include "ui/presentation/Addresses.h"
#include "ui/support/HomeTest.h"

namespace sweepwright::test {
namespace {

using ui::CleanItemCardView;
using ui::ViewController;

constexpr std::uint64_t kGigabyte = std::uint64_t{1} << 30U;

std::vector<std::string> strings(std::initializer_list<const char*> list) {
    return {list.begin(), list.end()};
}

class ViewControllerTest : public HomeTest {
  protected:
    ViewController& screen() { return screenOf(app_); }
    QString text(const char* key) { return app_.services().texts(key); }

    TestApp app_;
};

// --- Storage ---

TEST(StorageColor, IsGreenBelowSixtyOrangeBelowEightyAndRedFromThere) {
    EXPECT_EQ(ViewController::colorOf(0.0), ViewController::SystemGreen);
    EXPECT_EQ(ViewController::colorOf(59.9), ViewController::SystemGreen);
    EXPECT_EQ(ViewController::colorOf(60.0), ViewController::SystemOrange);
    EXPECT_EQ(ViewController::colorOf(79.9), ViewController::SystemOrange);
    EXPECT_EQ(ViewController::colorOf(80.0), ViewController::SystemRed);
    EXPECT_EQ(ViewController::colorOf(100.0), ViewController::SystemRed);
}

TEST_F(ViewControllerTest, TellsHowFullTheVolumeIs) {
    VolumeFiles files(app_.services().files);
    files.volume = platform::FileSystemAttributes{100 * kGigabyte, 40 * kGigabyte};
    StorageAnalyzer storage(app_.services().device, files);
    ViewController screen(withStorage(app_.services(), storage));
    int changes = 0;
    QObject::connect(&screen, &ViewController::storageChanged, &screen, [&] { ++changes; });
    screen.updateStorageInfo();
    EXPECT_EQ(changes, 1);
    EXPECT_DOUBLE_EQ(screen.storageProgress(), 0.6);
    EXPECT_EQ(screen.storageColor(), ViewController::SystemOrange);
    EXPECT_EQ(screen.storageText(), QStringLiteral("60%\nUsed"));
    EXPECT_EQ(screen.storageInfo(),
              QStringLiteral("Total: 100.0 GB | Used: 60.00 GB | Available: 40.00 GB"));
}

TEST_F(ViewControllerTest, TellsNothingOfAVolumeThatDoesNot) {
    VolumeFiles files(app_.services().files);
    StorageAnalyzer storage(app_.services().device, files);
    ViewController screen(withStorage(app_.services(), storage));
    screen.updateStorageInfo();
    EXPECT_DOUBLE_EQ(screen.storageProgress(), 0.0);
    EXPECT_EQ(screen.storageText(), QStringLiteral("0%\nUsed"));
    EXPECT_EQ(screen.storageInfo(), QStringLiteral("Total: – | Used: – | Available: –"));
}

// --- Cards and scans ---

TEST_F(ViewControllerTest, HasFiveCardsInTheirOrder) {
    QStringList titles;
    QStringList icons;
    for (const CleanItemCardView* card : screen().cards()) {
        titles.append(card->title());
        icons.append(card->icon());
    }
    EXPECT_EQ(titles,
              QStringList({text("Cache Files"), text("Temp Files"), text("Cookie & Web Data"),
                           text("System Logs"), text("Third Party App Cache")}));
    EXPECT_EQ(icons, QStringList({QStringLiteral("tray.full.fill"),
                                  QStringLiteral("clock.arrow.circlepath"),
                                  QStringLiteral("globe.badge.chevron.backward"),
                                  QStringLiteral("list.bullet.rectangle.portrait.fill"),
                                  QStringLiteral("app.badge.fill")}));
}

TEST_F(ViewControllerTest, HasNoTitleAndASmallOne) {
    EXPECT_EQ(screen().title(), QString());
    EXPECT_FALSE(screen().prefersLargeTitles());
}

TEST_F(ViewControllerTest, SaysThatItScansAndThenWhatItFound) {
    ASSERT_TRUE(settle(app_));
    app_.device.file("/var/mobile/Library/Caches/com.example/big", 3000);
    app_.device.file("/var/mobile/Library/Cookies/Cookies.binarycookies", 500);
    app_.device.file("/var/mobile/Library/Logs/app.log", 700);
    app_.device.file("/var/mobile/Library/Logs/other.log", 24);
    screen().performInitialScan();
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(screen().cards()[i]->sizeText(), text("Scanning..."));
    ASSERT_TRUE(rescan(app_));
    EXPECT_EQ(screen().cookieCard().sizeText(), QStringLiteral("500 B"));
    EXPECT_EQ(screen().logCard().sizeText(), QStringLiteral("724 B"));
    EXPECT_EQ(screen().cookieCard().fileList()->rows(),
              strings({"/var/mobile/Library/Cookies/Cookies.binarycookies"}));
    EXPECT_EQ(screen().logCard().fileList()->rowCount(), 2);
    EXPECT_EQ(screen().cacheCard().fileList()->rows().front(),
              "/var/mobile/Library/Caches/com.example");
}

TEST_F(ViewControllerTest, ListsTheAppsWithTheirSizesLargestFirst) {
    ASSERT_TRUE(settle(app_));
    EXPECT_EQ(screen().appCacheCard().sizeText(), QStringLiteral("0 B · Apps: 0"));
    addApp(app_.device, "com.example.small", "Small", 1024);
    addApp(app_.device, "com.example.big", "Big", 3072);
    screen().scanThirdPartyAppCaches();
    EXPECT_EQ(screen().appCacheCard().sizeText(), text("Scanning..."));
    ASSERT_TRUE(settle(app_));
    EXPECT_EQ(screen().appCacheCard().sizeText(), QStringLiteral("4.0 KB · Apps: 2"));
    EXPECT_EQ(screen().appCacheCard().fileList()->rows(),
              strings({"Big (3.0 KB)", "Small (1.0 KB)"}));
    EXPECT_EQ(screen().thirdPartyAppList().size(), 2U);
}

TEST_F(ViewControllerTest, ScansOnceForTwoTapsAndTellsWhatCanBeCleaned) {
    ASSERT_TRUE(settle(app_));
    app_.device.file("/var/mobile/Library/Cookies/Cookies.binarycookies", 2048);
    addApp(app_.device, "com.example.big", "Big", 3072);
    screen().scanButtonTapped();
    EXPECT_TRUE(screen().scanning());
    screen().scanButtonTapped();
    ASSERT_TRUE(alertComes(app_, "Scan Completed"));
    EXPECT_FALSE(screen().scanning());
    EXPECT_EQ(screen().totalCleanableSize(), 2048U);
    EXPECT_EQ(app_.presenter().alert()->message(),
              QStringLiteral("2.0 KB found. What a clean frees can differ: databases stay, and "
                             "custom paths and some system caches count twice."));
    EXPECT_EQ(titles(*app_.presenter().alert()), QStringList(QStringLiteral("OK")));
    EXPECT_EQ(screen().cookieCard().sizeText(), QStringLiteral("2.0 KB"));
    EXPECT_EQ(screen().logCard().sizeText(), QStringLiteral("0 B"));
    choose(app_, "OK");
    ASSERT_TRUE(until(app_, [&] { return screen().thirdPartyAppList().size() == 1; }));
    EXPECT_EQ(screen().cookieCard().fileList()->rowCount(), 1);
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(ViewControllerTest, CanScanAgainAfterAScan) {
    ASSERT_TRUE(settle(app_));
    for (int i = 0; i < 2; ++i) {
        screen().scanButtonTapped();
        ASSERT_TRUE(alertComes(app_, "Scan Completed"));
        choose(app_, "OK");
    }
    EXPECT_FALSE(screen().scanning());
}

// --- Taps on cards and their filter ---

TEST_F(ViewControllerTest, OpensAndClosesACardThatIsTapped) {
    for (CleanItemCardView* card : screen().cards()) {
        Q_EMIT card->tapped();
        EXPECT_TRUE(card->isExpanded());
        EXPECT_TRUE(card->animated());
        Q_EMIT card->tapped();
        EXPECT_FALSE(card->isExpanded());
    }
}

TEST_F(ViewControllerTest, LeavesTapsOnRowsAndTheButtonToThem) {
    CleanItemCardView& card = screen().tempCard();
    card.setTableFrame({8, 64, 342, 240});
    card.setCleanButtonFrame({252, 14, 60, 32});
    const QPointF row(100, 80);
    EXPECT_TRUE(screen().gestureRecognizerShouldReceiveTouch(&card, row));
    card.toggleExpanded(false);
    EXPECT_FALSE(screen().gestureRecognizerShouldReceiveTouch(&card, row));
    EXPECT_FALSE(screen().gestureRecognizerShouldReceiveTouch(&card, {260, 20}));
    EXPECT_TRUE(screen().gestureRecognizerShouldReceiveTouch(&card, {100, 20}));
    EXPECT_TRUE(screen().gestureRecognizerShouldReceiveTouch(&card, {100, 310}));
    EXPECT_TRUE(screen().gestureRecognizerShouldReceiveTouch(nullptr, row));
}

// --- Rows and Filza ---

TEST_F(ViewControllerTest, OffersToOpenAFile) {
    app_.device.file("/var/mobile/tmp/a file", 10);
    screen().cleanItemCardViewDidTapFilePath(screen().tempCard(), "/var/mobile/tmp/a file");
    const ui::AlertController* alert = app_.presenter().alert();
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(alert->title(), text("Open File"));
    EXPECT_EQ(alert->message(),
              text("Open File Message")
                  .replace(QLatin1String("%@"), QLatin1String("/var/mobile/tmp/a file")));
    EXPECT_EQ(alert->tip(), text("Filza Trash Tip"));
    EXPECT_EQ(titles(*alert), QStringList({text("Open Filza"), text("Cancel")}));
    EXPECT_EQ(alert->cancelAction()->title(), text("Cancel"));
}

TEST_F(ViewControllerTest, OffersToOpenAFolderAndWhatIsGone) {
    for (const char* path : {"/var/mobile/Documents", "/var/mobile/tmp/gone"}) {
        screen().cleanItemCardViewDidTapFilePath(screen().logCard(), path);
        ASSERT_NE(app_.presenter().alert(), nullptr);
        EXPECT_EQ(app_.presenter().alert()->title(), text("Open Path"));
        EXPECT_EQ(app_.presenter().alert()->message(),
                  text("Open Path Message").replace(QLatin1String("%@"), QLatin1String(path)));
        choose(app_, "Cancel");
        EXPECT_TRUE(app_.opener.openedAddresses.isEmpty());
    }
}

TEST_F(ViewControllerTest, OpensTheRowThatIsTappedOnACard) {
    screen().tempCard().updateFileList({"/var/mobile/tmp/x", "/var/mobile/Documents"});
    screen().tempCard().didSelectRow(1);
    choose(app_, "Open Filza");
    EXPECT_EQ(app_.opener.openedAddresses, QByteArrayList{"filza://view=/var/mobile/Documents"});
    EXPECT_FALSE(app_.presenter().active());
}

class AppRows : public ViewControllerTest {
  protected:
    void SetUp() override {
        ASSERT_TRUE(settle(app_));
        data_ = addApp(app_.device, "com.example.big", "Big", 4096);
        addApp(app_.device, "com.example.twin", "Big", 2048);
        addApp(app_.device, "com.example.pro", "My App (Pro)", 1024);
        nameless_ = addApp(app_.device, "com.example.nameless", "", 512);
        screen().scanThirdPartyAppCaches();
        ASSERT_TRUE(settle(app_));
    }
    void tap(const std::string& entry) {
        screen().cleanItemCardViewDidTapFilePath(screen().appCacheCard(), entry);
    }
    std::string data_;
    std::string nameless_;
};

TEST_F(AppRows, OfferToOpenTheDataOfTheFirstAppOfThatName) {
    tap("Big (2.0 KB)");
    ASSERT_NE(app_.presenter().alert(), nullptr);
    EXPECT_EQ(app_.presenter().alert()->title(), text("Open Path"));
    EXPECT_EQ(
        app_.presenter().alert()->message(),
        text("Open Path Message").replace(QLatin1String("%@"), QString::fromStdString(data_)));
    choose(app_, "Open Filza");
    EXPECT_EQ(app_.opener.openedAddresses,
              QByteArrayList{"filza://view=" + QByteArray::fromStdString(data_)});
}

TEST_F(AppRows, DoNothingWhenTheNameIsCutAtItsOwnParenthesis) {
    const auto& rows = screen().appCacheCard().fileList()->rows();
    EXPECT_EQ(rows[2], "My App (Pro) (1.0 KB)");
    tap(rows[2]);
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(AppRows, DoNothingWithoutASizeOrAnApp) {
    tap("Big");
    tap("Unknown (1 B)");
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(AppRows, GoByTheIdentifierWhereThereIsNoName) {
    const std::string row = screen().appCacheCard().fileList()->rows().back();
    tap(row);
    ASSERT_NE(app_.presenter().alert(), nullptr) << row;
    EXPECT_TRUE(app_.presenter().alert()->message().contains(QString::fromStdString(nameless_)));
}

class FilzaTest : public ViewControllerTest {};

TEST_F(FilzaTest, GetsThePathPercentEncoded) {
    screen().openPathInFilza("/var/a b/文#%[1]\"?=&+,;:@!$'()*~-._");
    EXPECT_EQ(
        app_.opener.openedAddresses,
        QByteArrayList{"filza://view=/var/a%20b/%E6%96%87%23%25%5B1%5D%22?=&+,;:@!$'()*~-._"});
}

TEST_F(FilzaTest, GetsTheBytesOfANameThatIsNoText) {
    screen().openPathInFilza("/var/\xff\xfe");
    EXPECT_EQ(app_.opener.openedAddresses, QByteArrayList{"filza://view=/var/%FF%FE"});
}

TEST_F(FilzaTest, IsAskedByTheNextFormWhenItDoesNotTakeTheFirst) {
    app_.opener.refused = "filza://view=";
    screen().openPathInFilza("/var");
    app_.opener.refused = "filza://view";
    screen().openPathInFilza("/var");
    EXPECT_EQ(app_.opener.openedAddresses, QByteArrayList({"filza://view///var", "filza:///var"}));
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(FilzaTest, IsSaidToBeMissingWhenNothingTakesItsAddresses) {
    app_.opener.opens = false;
    screen().openPathInFilza("/var");
    ASSERT_NE(app_.presenter().alert(), nullptr);
    EXPECT_TRUE(app_.opener.openedAddresses.isEmpty());
    EXPECT_EQ(app_.presenter().alert()->title(), text("Cannot Open Filza"));
    EXPECT_EQ(app_.presenter().alert()->message(), text("Cannot Open Filza Message"));
    EXPECT_EQ(titles(*app_.presenter().alert()), QStringList(text("OK")));
}

TEST_F(FilzaTest, IsSaidToBeMissingWhenOpeningFails) {
    app_.opener.fails = true;
    screen().openPathInFilza("/var");
    EXPECT_EQ(app_.opener.openedAddresses.size(), 1);
    ASSERT_NE(app_.presenter().alert(), nullptr);
    EXPECT_EQ(app_.presenter().alert()->title(), text("Cannot Open Filza"));
}

// --- Texts ---

TEST_F(ViewControllerTest, ReadsSomeTextsAgainInAnotherLanguageAndLeavesTheOthersAsBuilt) {
    int changes = 0;
    QObject::connect(&screen(), &ViewController::textsChanged, &screen(), [&] { ++changes; });
    const QString note = screen().storageCapacityNote();
    ASSERT_TRUE(app_.services().language.setLanguage("zh-Hans").has_value());
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(screen().scanTitle(), QStringLiteral("扫描垃圾文件"));
    EXPECT_EQ(screen().cleanAllTitle(), QStringLiteral("一键清理全部"));
    EXPECT_TRUE(screen().storageText().endsWith(QStringLiteral("已使用")));
    EXPECT_TRUE(screen().storageInfo().startsWith(QStringLiteral("总容量: ")));
    EXPECT_NE(screen().storageCapacityNote(), note);
    EXPECT_EQ(screen().cacheReboundNote(), text("Cache Rebound Note"));
    EXPECT_EQ(screen().cleanItemsTitle(), QStringLiteral("What Can Be Cleaned"));
    EXPECT_EQ(screen().cacheCard().title(), QStringLiteral("Cache Files"));
}

TEST_F(ViewControllerTest, OpensTheMakersPageWhereThatCanBeOpened) {
    screen().creditLinkTapped();
    ASSERT_EQ(app_.opener.opened.size(), 1U);
    EXPECT_EQ(app_.opener.opened[0].toString().toStdString(), ui::addresses::kRepository);
    app_.opener.opens = false;
    screen().creditLinkTapped();
    EXPECT_EQ(app_.opener.opened.size(), 1U);
    EXPECT_FALSE(app_.presenter().active());
}

}  // namespace
}  // namespace sweepwright::test
