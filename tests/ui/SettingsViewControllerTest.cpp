#include <QSignalSpy>

#include "protection/CleanStatistics.h"
#include "ui/SettingsTest.h"
#include "ui/apps/WhitelistViewController.h"
#include "ui/history/CleanHistoryViewController.h"
#include "ui/presentation/Addresses.h"
#include "ui/settings/SettingsViewController.h"

namespace sweepwright::ui {
namespace {

using test::SettingsTest;
using test::TestApp;

constexpr std::uint64_t kMegabyte = 1024ULL * 1024ULL;

TEST_F(SettingsTest, TheFirstStartStoresTheDefaults) {
    EXPECT_EQ(defaults().unsignedInteger("largeFileThreshold"), 52428800U);
    EXPECT_EQ(defaults().string("scanDepth"), "深度扫描");
    EXPECT_FALSE(defaults().object("showHiddenFiles"));
    EXPECT_EQ(row(1, 1).value, QLatin1String("50.00 MB"));
    EXPECT_FALSE(row(1, 0).on);
}

TEST_F(SettingsTest, AThresholdOfZeroIsReplacedWhenTheRowsAreReadAgain) {
    ASSERT_TRUE(defaults().set("largeFileThreshold", 0));
    settings().loadSettingsData();
    EXPECT_EQ(defaults().unsignedInteger("largeFileThreshold"), 52428800U);
    EXPECT_EQ(row(1, 1).value, QLatin1String("50.00 MB"));
}

TEST_F(SettingsTest, WhatIsStoredAlreadyStays) {
    ASSERT_TRUE(defaults().set("largeFileThreshold", 7 * kMegabyte));
    ASSERT_TRUE(defaults().set("scanDepth", "快速扫描"));
    settings().loadSettingsData();
    EXPECT_EQ(defaults().unsignedInteger("largeFileThreshold"), 7 * kMegabyte);
    EXPECT_EQ(defaults().string("scanDepth"), "快速扫描");
    EXPECT_EQ(row(1, 1).value, QLatin1String("7.00 MB"));
}

TEST_F(SettingsTest, HasItsSectionsAndRowsInTheirOrder) {
    struct Expected {
        const char* title;
        const char* subtitle;  // where it is a plain text
        const char* type;
        const char* key;
        const char* icon;
    };
    const std::vector<std::vector<Expected>> sections = {
        {{"Language", "Language Description", "disclosure", "language", "globe"}},
        {{"Show Hidden Files", "Show Hidden Files Description", "switch", "showHiddenFiles",
          "eye.slash.fill"},
         {"Large File Threshold", "Large File Threshold Description", "disclosure",
          "largeFileThreshold", "doc.text.fill"},
         {"Custom Paths", "", "disclosure", "customPaths", "folder.badge.plus"}},
        {{"Clean History", "Clean History Description", "disclosure", "cleanHistory",
          "clock.arrow.circlepath"},
         {"Clean Statistics", "Clean Statistics Description", "disclosure", "cleanStatistics",
          "chart.bar.fill"}},
        {{"Clean Whitelist", "Clean Whitelist Description", "disclosure", "whitelist",
          "checkmark.shield.fill"},
         {"Path Whitelist", "", "disclosure", "pathWhitelist", "lock.shield.fill"}},
        {{"Version Info", "", "none", "", "info.circle.fill"},
         {"Help", "Help Description", "disclosure", "help", "questionmark.circle.fill"},
         {"Privacy Policy", "Privacy Policy Description", "disclosure", "privacy",
          "hand.raised.fill"},
         {"About", "About Description", "disclosure", "about", "person.circle.fill"}},
        {{"Visit Website", "Visit Website Description", "disclosure", "website", "safari.fill"},
         {"Follow WeChat", "Follow WeChat Description", "disclosure", "wechat", "message.fill"},
         {"Follow Telegram", "Follow Telegram Description", "disclosure", "telegram",
          "paperplane.fill"},
         {"GitHub", "GitHub Description", "disclosure", "github", "star.fill"}}};
    const auto& data = settings().settingsData();
    ASSERT_EQ(data.size(), sections.size());
    for (std::size_t section = 0; section < sections.size(); ++section) {
        ASSERT_EQ(data[section].size(), sections[section].size());
        for (std::size_t i = 0; i < sections[section].size(); ++i) {
            const Expected& expected = sections[section][i];
            const SettingsRow& found = data[section][i];
            EXPECT_EQ(found.title, text(expected.title));
            if (*expected.subtitle != '\0') {
                EXPECT_EQ(found.subtitle, text(expected.subtitle));
            }
            EXPECT_EQ(found.type, QLatin1String(expected.type)) << expected.title;
            EXPECT_EQ(found.key, QLatin1String(expected.key)) << expected.title;
            EXPECT_EQ(found.icon, QLatin1String(expected.icon)) << expected.title;
        }
    }
}

TEST_F(SettingsTest, PutsATitleOverEverySectionButTheFirst) {
    const QStringList expected = {
        QString(),        text("Storage Settings"), text("Clean Records"), text("Clean Protection"),
        text("App Info"), text("Follow Us")};
    EXPECT_EQ(settings().headers(), expected);
    EXPECT_EQ(settings().title(), text("Settings"));
    EXPECT_TRUE(settings().prefersLargeTitles());
}

TEST_F(SettingsTest, CountsWhatTheListsHold) {
    EXPECT_EQ(row(1, 2).subtitle, QLatin1String("Paths added: 0"));
    EXPECT_EQ(row(3, 1).subtitle, QLatin1String("Paths protected: 3"));
    const ScreenServices& services = app_.services();
    ASSERT_TRUE(services.customPaths.addCustomPath("/a"));
    ASSERT_TRUE(services.customPaths.addCustomPath("/b"));
    ASSERT_TRUE(services.pathWhitelist.addPathToWhitelist("/c"));
    ASSERT_TRUE(services.appWhitelist.addAppToWhitelist("org.example.app"));
    settings().loadSettingsData();
    EXPECT_EQ(row(1, 2).subtitle, QLatin1String("Paths added: 2"));
    EXPECT_EQ(row(3, 0).subtitle, QLatin1String("Apps protected: 1"));
    EXPECT_EQ(row(3, 1).subtitle, QLatin1String("Paths protected: 4"));
}

TEST_F(SettingsTest, ShowsWhatAnotherProgramHasChangedWhenItAppears) {
    CustomPathManager other(defaults());
    ASSERT_TRUE(other.addCustomPath("/from/elsewhere"));
    stack().setVisible(false);
    stack().setVisible(true);
    EXPECT_EQ(row(1, 2).subtitle, QLatin1String("Paths added: 1"));
}

TEST_F(SettingsTest, GivesARowATagOfItsSectionAndItsPlace) {
    const SettingsRows& rows = *settings().rows();
    ASSERT_EQ(rows.rowCount(), 16);
    const auto at = [&](int index, SettingsRows::Role role) {
        return rows.data(rows.index(index), role);
    };
    EXPECT_EQ(at(0, SettingsRows::TagRole).toInt(), 0);
    EXPECT_EQ(at(1, SettingsRows::TagRole).toInt(), 1000);
    EXPECT_EQ(at(3, SettingsRows::TagRole).toInt(), 1002);
    EXPECT_EQ(at(15, SettingsRows::TagRole).toInt(), 5003);
    EXPECT_TRUE(at(1, SettingsRows::FirstRole).toBool());
    EXPECT_FALSE(at(1, SettingsRows::LastRole).toBool());
    EXPECT_TRUE(at(3, SettingsRows::LastRole).toBool());
}

TEST_F(SettingsTest, StoresWhatASwitchIsSetTo) {
    settings().switchValueChanged(1000, true);
    EXPECT_TRUE(defaults().boolean("showHiddenFiles"));
    EXPECT_TRUE(row(1, 0).on);
    settings().switchValueChanged(1000, false);
    EXPECT_TRUE(defaults().object("showHiddenFiles"));
    EXPECT_FALSE(defaults().boolean("showHiddenFiles"));
    EXPECT_FALSE(row(1, 0).on);
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(SettingsTest, TakesNoSwitchWhereThereIsNone) {
    const std::string before = storedBytes();
    for (const int tag : {-1, 0, 1001, 1003, 4000, 6000, 9999})
        settings().switchValueChanged(tag, true);
    EXPECT_EQ(storedBytes(), before);
}

TEST_F(SettingsTest, ChangesOnlyTheRowsThatAreDifferent) {
    QSignalSpy changed(settings().rows(), &SettingsRows::dataChanged);
    QSignalSpy reset(settings().rows(), &SettingsRows::modelReset);
    settings().loadSettingsData();
    EXPECT_EQ(changed.count(), 0);
    settings().showLargeFileThresholdSelector();
    choose(QStringLiteral("1 GB"));
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed[0][0].toModelIndex().row(), 2);
    EXPECT_EQ(changed[0][1].toModelIndex().row(), 2);
    EXPECT_EQ(reset.count(), 0);
}

TEST_F(SettingsTest, LeadsFromEveryRowToWhatItIsFor) {
    const std::vector<std::tuple<int, int, const char*>> alerts = {
        {0, 0, "Language Settings"}, {1, 1, "Large File Threshold"},
        {1, 2, "Custom Paths"},      {2, 1, "Clean Statistics"},
        {3, 1, "Path Whitelist"},    {4, 1, "Use Help"},
        {4, 2, "Privacy Policy"},    {4, 3, "About Us"}};
    for (const auto& [section, index, title] : alerts) {
        settings().didSelectRow(section, index);
        EXPECT_EQ(alert().title(), text(title));
        app_.presenter().dismiss(&alert());
    }
    settings().didSelectRow(2, 0);
    EXPECT_NE(qobject_cast<CleanHistoryViewController*>(stack().top()), nullptr);
    stack().pop();
    settings().didSelectRow(3, 0);
    EXPECT_NE(qobject_cast<WhitelistViewController*>(stack().top()), nullptr);
    stack().pop();
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(SettingsTest, DoesNothingForARowThatIsForNothing) {
    for (const auto& [section, index] :
         std::vector<std::pair<int, int>>{{1, 0}, {4, 0}, {-1, 0}, {6, 0}, {0, 1}, {0, -1}}) {
        settings().didSelectRow(section, index);
        EXPECT_FALSE(app_.presenter().active());
        EXPECT_EQ(stack().depth(), 1);
    }
}

TEST_F(SettingsTest, PointsEverySheetAtItsRow) {
    const QRectF cell(16, 300, 358, 60);
    for (const auto& [section, index] :
         std::vector<std::pair<int, int>>{{0, 0}, {1, 1}, {1, 2}, {3, 1}}) {
        settings().didSelectRow(section, index, cell);
        EXPECT_EQ(alert().style(), AlertController::ActionSheet);
        EXPECT_EQ(alert().anchor(), cell);
        app_.presenter().dismiss(&alert());
    }
    settings().didSelectRow(3, 1, cell);
    choose("View Paths");
    EXPECT_EQ(alert().anchor(), cell);
    choose(QStringLiteral("🔒 /var/mobile/Library/Caches/GeoServices"));
    EXPECT_EQ(alert().anchor(), cell);
}

TEST_F(SettingsTest, OffersEveryThresholdAndStoresTheChosenOne) {
    settings().showLargeFileThresholdSelector();
    EXPECT_EQ(alert().message(), text("Select Large File Threshold"));
    const std::vector<std::string> expected = {"10 MB",  "50 MB", "100 MB",
                                               "500 MB", "1 GB",  "Cancel"};
    EXPECT_EQ(titles(), expected);
    choose("Cancel");
    EXPECT_EQ(defaults().unsignedInteger("largeFileThreshold"), 52428800U);
    const std::vector<std::tuple<const char*, std::uint64_t, const char*>> choices = {
        {"10 MB", 10485760, "10.00 MB"},
        {"50 MB", 52428800, "50.00 MB"},
        {"100 MB", 104857600, "100.00 MB"},
        {"500 MB", 524288000, "500.00 MB"},
        {"1 GB", 1073741824, "1.00 GB"}};
    for (const auto& [title, bytes, value] : choices) {
        settings().showLargeFileThresholdSelector();
        choose(QString::fromLatin1(title));
        EXPECT_EQ(defaults().unsignedInteger("largeFileThreshold"), bytes);
        EXPECT_EQ(row(1, 1).value, QLatin1String(value));
    }
}

TEST_F(SettingsTest, TellsOfNoCleanBeforeThereWasOne) {
    settings().showCleanStatistics();
    EXPECT_EQ(alert().message(),
              QStringLiteral("Cleans: 0\nSpace freed: 0 B\nLast clean: 暂无记录"));
    EXPECT_EQ(titles(), std::vector<std::string>{"OK"});
}

TEST_F(SettingsTest, TellsTheTotalsAndTheDateAsItIsStored) {
    ASSERT_TRUE(defaults().set("totalCleanedBytes", 3 * kMegabyte));
    ASSERT_TRUE(defaults().set("cleanCount", 12));
    ASSERT_TRUE(defaults().set("lastCleanDate", "2026-02-28 23:59:58"));
    settings().showCleanStatistics();
    EXPECT_EQ(alert().title(), text("Clean Statistics"));
    EXPECT_EQ(alert().message(),
              QStringLiteral("Cleans: 12\nSpace freed: 3.00 MB\nLast clean: 2026-02-28 23:59:58"));
}

TEST_F(SettingsTest, ShowsTheTextsAboutTheApp) {
    settings().showHelp();
    EXPECT_EQ(alert().message(), text("Help Text"));
    EXPECT_TRUE(alert().article());
    EXPECT_EQ(titles(), std::vector<std::string>{text("I Know").toStdString()});
    choose("I Know");
    settings().showPrivacyPolicy();
    EXPECT_EQ(alert().message(), text("Privacy Policy Text"));
    choose("OK");
    settings().showAbout();
    EXPECT_TRUE(alert().message().startsWith(QLatin1String("Sweepwright 0.2.0 (1)\n")));
    choose("OK");
    EXPECT_FALSE(app_.presenter().active());
    EXPECT_EQ(row(4, 0).subtitle, QLatin1String("0.2.0 (1)"));
}

TEST_F(SettingsTest, ExplainsEveryCategoryAndWhatIsProtected) {
    for (const char* language : {"en", "zh-Hans"}) {
        (void)app_.services().language.setLanguage(language);
        const QString help = text("Help Text");
        for (const char* key : {"Cache Files", "Cookie & Web Data", "System Logs", "Temp Files"})
            EXPECT_TRUE(help.contains(text(key))) << language << ' ' << key;
        EXPECT_GE(help.count(QStringLiteral("\n• ")), 9 + 5) << language;
        EXPECT_GE(help.count(QStringLiteral("# ")), 6) << language;
    }
}

TEST_F(SettingsTest, OpensTheMakersPages) {
    for (int i = 0; i < 4; ++i)
        settings().didSelectRow(5, i);
    const std::vector<std::string_view> expected = {addresses::kWebsite, addresses::kWeChat,
                                                    addresses::kTelegram, addresses::kRepository};
    ASSERT_EQ(app_.opener.opened.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(app_.opener.opened[i].toString().toStdString(), expected[i]);
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(SettingsTest, SaysWhenAPageCannotBeOpened) {
    app_.opener.opens = false;
    for (int i = 0; i < 4; ++i) {
        settings().didSelectRow(5, i);
        EXPECT_EQ(alert().title(), text("Cannot Open Link"));
        EXPECT_EQ(alert().message(), text("Check Network Connection"));
        choose("OK");
        EXPECT_FALSE(app_.presenter().active());
    }
}

// Answers when asked to.
class SlowOpener : public UrlOpener {
  public:
    [[nodiscard]] bool canOpen(const QUrl&) const override { return true; }
    void open(const QUrl&, const Completion& completion) override { answer = completion; }
    Completion answer;
};

TEST_F(SettingsTest, HearsNothingOfAPageThatFailsAfterItIsGone) {
    SlowOpener opener;
    const ScreenServices& all = app_.services();
    const ScreenServices services{
        all.device,      all.files,   all.defaults, all.notifications, all.mainQueue,
        all.engine,      all.storage, all.apps,     all.pathWhitelist, all.appWhitelist,
        all.customPaths, all.history, all.language, all.texts,         opener,
        all.resources,   all.icons};
    auto screen = std::make_unique<SettingsViewController>(services, nullptr);
    screen->setPresenter(&app_.presenter());
    screen->openWebsite();
    screen.reset();
    opener.answer(false);
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(SettingsTest, FollowsTheProtectedAppsOnlyWhileItIsOnScreen) {
    AppWhitelistManager& apps = app_.services().appWhitelist;
    ASSERT_TRUE(apps.addAppToWhitelist("org.example.one"));
    app_.notifications.post("WhitelistUpdated");
    EXPECT_EQ(row(3, 0).subtitle, QLatin1String("Apps protected: 1"));
    stack().setVisible(false);
    ASSERT_TRUE(apps.addAppToWhitelist("org.example.two"));
    app_.notifications.post("WhitelistUpdated");
    EXPECT_EQ(row(3, 0).subtitle, QLatin1String("Apps protected: 1"));
    stack().setVisible(true);
    EXPECT_EQ(row(3, 0).subtitle, QLatin1String("Apps protected: 2"));
    ASSERT_TRUE(apps.clearAllWhitelistedApps());
    app_.notifications.post("WhitelistUpdated");
    EXPECT_EQ(row(3, 0).subtitle, text("Clean Whitelist Description"));
}

}  // namespace
}  // namespace sweepwright::ui
