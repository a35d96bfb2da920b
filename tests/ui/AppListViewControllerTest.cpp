#include "ui/AppScreensTest.h"

namespace sweepwright::test {
namespace {

using ui::AppListViewController;
using Names = std::vector<std::string>;

class AppListViewControllerTest : public AppScreensTest {
  protected:
    void search(const char* text) { list().filterAppsWithSearchText(QString::fromUtf8(text)); }
};

// --- Loading ---

TEST_F(AppListViewControllerTest, BeginsWithNothing) {
    const AppListViewController fresh(app_.services());
    EXPECT_EQ(fresh.selectedSegment(), 0);
    EXPECT_FALSE(fresh.isSearching());
    EXPECT_FALSE(fresh.isEditingMode());
    EXPECT_FALSE(fresh.loading());
    EXPECT_TRUE(fresh.allApps().empty());
    EXPECT_TRUE(fresh.emptyText().isEmpty());
    EXPECT_EQ(fresh.title(), QLatin1String("Apps"));
    EXPECT_FALSE(fresh.prefersLargeTitles());
    EXPECT_EQ(fresh.rightBarButtonItem()->title(), QLatin1String("Select"));
}

TEST_F(AppListViewControllerTest, SplitsWhatTheScanFindsAndKeepsItsOrder) {
    showFew();
    EXPECT_EQ(names(list().allApps()), (Names{"Alpha", "Bravo", "Maps", "Safari", "Charlie"}));
    EXPECT_EQ(names(list().userApps()), (Names{"Alpha", "Bravo", "Charlie"}));
    EXPECT_EQ(names(list().systemApps()), (Names{"Maps", "Safari"}));
    EXPECT_EQ(names(list().filteredUserApps()), names(list().userApps()));
    EXPECT_EQ(names(list().filteredSystemApps()), names(list().systemApps()));
    EXPECT_EQ(titles(), (Names{"Alpha", "Bravo", "Charlie"}));
}

TEST_F(AppListViewControllerTest, ShowsThatItLoadsAndHidesTheEmptyText) {
    finishLoading();
    EXPECT_EQ(list().emptyText(), QLatin1String("No User Apps"));
    QSignalSpy changes(&list(), &AppListViewController::stateChanged);
    list().loadApps();
    EXPECT_TRUE(list().loading());
    EXPECT_TRUE(list().emptyText().isEmpty());
    EXPECT_EQ(changes.count(), 1);
    finishLoading();
    EXPECT_EQ(list().emptyText(), QLatin1String("No User Apps"));
}

TEST_F(AppListViewControllerTest, LoadsWhenItIsShownForTheFirstTimeAndAtEveryAppearance) {
    installFew();
    const platform::LogCapture log;
    finishLoading();
    EXPECT_EQ(scansIn(log), 1);
    app_.scene().sceneWillConnect();
    for (int visit = 2; visit < 4; ++visit) {
        app_.scene().tabBarController()->setSelectedIndex(1);
        finishLoading();
        EXPECT_EQ(scansIn(log), visit);
        app_.scene().tabBarController()->setSelectedIndex(0);
    }
}

TEST_F(AppListViewControllerTest, DoesNotLoadWhenItAppearsInEditMode) {
    showFew();
    list().toggleEditMode();
    app_.scene().sceneWillConnect();
    app_.scene().tabBarController()->setSelectedIndex(1);
    EXPECT_FALSE(list().loading());
}

TEST_F(AppListViewControllerTest, FollowsARunningScanByOneMoreHoweverOftenItIsAsked) {
    finishLoading();
    const platform::LogCapture log;
    for (int i = 0; i < 5; ++i)
        list().loadApps();
    installFew();
    finishLoading();
    EXPECT_EQ(scansIn(log), 2);
    EXPECT_EQ(list().allApps().size(), 5U);
}

TEST_F(AppListViewControllerTest, RefreshesUntilTheScanIsThrough) {
    showFew();
    list().refreshApps();
    EXPECT_TRUE(list().refreshing());
    EXPECT_TRUE(list().loading());
    finishLoading();
    EXPECT_FALSE(list().refreshing());
}

TEST_F(AppListViewControllerTest, DropsAResultThatComesWhenItIsGone) {
    showFew();
    {
        AppListViewController gone(app_.services());
        gone.loadApps();
    }
    reload();
    EXPECT_EQ(list().allApps().size(), 5U);
}

TEST_F(AppListViewControllerTest, FiltersAgainWhatAScanBringsWhileSearching) {
    showFew();
    search("ch");
    install(app_.device, {"com.example.chess", "Chess", 50 * kMiB, 0});
    reload();
    EXPECT_EQ(titles(), (Names{"Chess", "Charlie"}));
    EXPECT_EQ(list().userApps().size(), 4U);
    EXPECT_TRUE(list().isSearching());
}

TEST_F(AppListViewControllerTest, KeepsTheRowsThatAScanDoesNotChange) {
    showFew();
    QSignalSpy resets(&rows(), &ui::AppListModel::modelReset);
    QSignalSpy moves(&rows(), &ui::AppListModel::rowsMoved);
    QSignalSpy inserts(&rows(), &ui::AppListModel::rowsInserted);
    QSignalSpy changes(&rows(), &ui::AppListModel::dataChanged);
    setCaches(app_.device, "org.example.charlie", 90 * kMiB);
    install(app_.device, {"com.example.delta", "Delta", kMiB, 0});
    reload();
    EXPECT_EQ(titles(), (Names{"Charlie", "Alpha", "Bravo", "Delta"}));
    EXPECT_EQ(resets.count(), 0);
    EXPECT_EQ(moves.count(), 1);
    EXPECT_EQ(inserts.count(), 1);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_TRUE(list().animatesChanges());
}

TEST_F(AppListViewControllerTest, LoadsASecondAfterACleanWasRecorded) {
    showFew();
    app_.notifications.post("CleanHistoryUpdated");
    app_.mainQueue.drain();
    EXPECT_FALSE(list().loading());
    bool due = false;
    app_.mainQueue.after(AppListViewController::kReloadDelay, [&] { due = true; });
    app_.mainQueue.runUntil([&] { return due; });
    EXPECT_TRUE(list().loading());
}

TEST_F(AppListViewControllerTest, HearsOfCleansThatAreRecordedOnOtherThreads) {
    showFew();
    const auto queue = platform::DispatchQueue::serial("test");
    queue->sync([&] { app_.notifications.post("CleanHistoryUpdated"); });
    app_.mainQueue.runUntil([&] { return list().loading(); });
    finishLoading();
}

TEST_F(AppListViewControllerTest, DoesNotLoadAfterACleanInEditModeNeitherAtOnceNorLater) {
    showFew();
    const platform::LogCapture log;
    // Posted before edit mode and looked at in it; posted and looked at in it, due after it.
    app_.notifications.post("CleanHistoryUpdated");
    app_.mainQueue.drain();
    list().toggleEditMode();
    app_.notifications.post("CleanHistoryUpdated");
    app_.mainQueue.drain();
    bool due = false;
    app_.mainQueue.after(AppListViewController::kReloadDelay, [&] { due = true; });
    app_.mainQueue.runUntil([&] { return due; });
    list().toggleEditMode();
    app_.mainQueue.drain();
    EXPECT_FALSE(list().loading());
    EXPECT_EQ(scansIn(log), 0);
}

TEST_F(AppListViewControllerTest, IsGoneBeforeTheSecondHasPassed) {
    auto screen = std::make_unique<AppListViewController>(app_.services());
    finishLoading();
    const platform::LogCapture log;
    app_.notifications.post("CleanHistoryUpdated");
    app_.mainQueue.drain();
    screen.reset();
    bool due = false;
    app_.mainQueue.after(AppListViewController::kReloadDelay, [&] { due = true; });
    app_.mainQueue.runUntil([&] { return due; });
    finishLoading();
    // Only the tab's own screen looked.
    EXPECT_EQ(scansIn(log), 1);
}

// --- Segments ---

TEST_F(AppListViewControllerTest, CountsTheWholeListsInTheSegments) {
    showFew();
    EXPECT_EQ(list().segmentTitles(),
              (QStringList{QStringLiteral("User Apps (3)"), QStringLiteral("System Apps (2)")}));
    search("zzz");
    EXPECT_EQ(list().segmentTitles()[0], QLatin1String("User Apps (3)"));
}

TEST_F(AppListViewControllerTest, GivesTheSegmentsAWidthWithinItsBounds) {
    EXPECT_DOUBLE_EQ(list().segmentsWidth(90, 390), 280.0);
    EXPECT_DOUBLE_EQ(list().segmentsWidth(40, 390), 250.0);
    EXPECT_DOUBLE_EQ(list().segmentsWidth(300, 390), 312.0);
    EXPECT_DOUBLE_EQ(list().segmentsWidth(40, 300), 240.0);
}

TEST_F(AppListViewControllerTest, ShowsTheOtherSegmentFromItsTop) {
    showFew();
    QSignalSpy replaced(&list(), &AppListViewController::listReplaced);
    list().setSelectedSegment(AppListViewController::SystemApps);
    EXPECT_EQ(titles(), (Names{"Maps", "Safari"}));
    EXPECT_EQ(replaced.count(), 1);
    EXPECT_FALSE(list().animatesChanges());
    list().setSelectedSegment(AppListViewController::SystemApps);
    list().setSelectedSegment(7);
    EXPECT_EQ(replaced.count(), 1);
    list().setSelectedSegment(AppListViewController::UserApps);
    EXPECT_EQ(titles(), (Names{"Alpha", "Bravo", "Charlie"}));
}

TEST_F(AppListViewControllerTest, LosesTheSelectionWithTheSegment) {
    showFew();
    list().toggleEditMode();
    list().didSelectRow(0);
    list().setSelectedSegment(AppListViewController::SystemApps);
    EXPECT_EQ(rows().selectedCount(), 0);
    EXPECT_EQ(list().selectionCountText(), QLatin1String("No Apps Selected"));
}

// --- Search ---

TEST_F(AppListViewControllerTest, FindsAppsByPartsOfTheirNamesInAnyCase) {
    showFew();
    search("aL");
    EXPECT_TRUE(list().isSearching());
    EXPECT_EQ(titles(), (Names{"Alpha"}));
    search("");
    EXPECT_FALSE(list().isSearching());
    EXPECT_EQ(titles(), (Names{"Alpha", "Bravo", "Charlie"}));
}

TEST_F(AppListViewControllerTest, FindsALowerCaseIdentifierByCapitals) {
    showFew();
    search("ORG.EX");
    EXPECT_EQ(titles(), (Names{"Charlie"}));
}

TEST_F(AppListViewControllerTest, IgnoresTheCaseOfIdentifiersOfNamesAndOfOtherScripts) {
    install(app_.device, {"com.Example.UPPER", "Ärger ЭЛЕКТРИЧКА", kMiB, 0});
    reload();
    for (const char* text : {"example.upper", "ärger", "ÄRGER", "электричка"}) {
        search(text);
        EXPECT_EQ(rows().rowCount(), 1) << text;
    }
}

TEST_F(AppListViewControllerTest, SearchesBothSegments) {
    showFew();
    search("a");
    EXPECT_EQ(names(list().filteredUserApps()), (Names{"Alpha", "Bravo", "Charlie"}));
    list().setSelectedSegment(AppListViewController::SystemApps);
    search("saf");
    EXPECT_EQ(titles(), (Names{"Safari"}));
    EXPECT_TRUE(list().filteredUserApps().empty());
}

TEST_F(AppListViewControllerTest, TellsWhyThereAreNoRows) {
    finishLoading();
    EXPECT_EQ(list().emptyText(), QLatin1String("No User Apps"));
    list().setSelectedSegment(AppListViewController::SystemApps);
    EXPECT_EQ(list().emptyText(), QLatin1String("No System Apps"));
    search("x");
    EXPECT_EQ(list().emptyText(), QLatin1String("No Matching Apps"));
    search("");
    installFew();
    reload();
    EXPECT_TRUE(list().emptyText().isEmpty());
}

// --- Cells ---

TEST_F(AppListViewControllerTest, ShowsBothSizesWhereThereAreBothElseTheTotal) {
    showFew();
    EXPECT_EQ(detail(0), "Cache: 30.00 MB | Temporary: 2.00 MB");
    EXPECT_EQ(detail(1), "✅ Total: 20.00 MB");
    EXPECT_EQ(detail(2), "Total: 3.00 MB");
    EXPECT_FALSE(rows().at(0).isProtected);
    EXPECT_TRUE(rows().at(1).isProtected);
}

TEST_F(AppListViewControllerTest, ShowsTheIdentifierOfAnAppWithoutName) {
    app_.device.file("/var/mobile/Containers/Data/Application/net.nameless/tmp/file", 5);
    reload();
    EXPECT_EQ(titles(), (Names{"net.nameless"}));
    EXPECT_EQ(detail(0), "Total: 5 B");
}

TEST_F(AppListViewControllerTest, KeepsAnIconsPictureForAsLongAsItIsTheSame) {
    install(app_.device, {"com.example.icon", "Icon", kMiB, 0, plainIcon(255, 0, 0)});
    reload();
    const QString first = rows().at(0).picture;
    EXPECT_TRUE(first.startsWith(QLatin1String("image://appicon/")));
    reload();
    EXPECT_EQ(rows().at(0).picture, first);
    install(app_.device, {"com.example.icon", "Icon", kMiB, 0, plainIcon(0, 255, 0)});
    reload();
    EXPECT_NE(rows().at(0).picture, first);
    EXPECT_EQ(app_.icons.count(), 1U);
}

// --- Language ---

TEST_F(AppListViewControllerTest, ReadsAllTextsAgainInAnotherLanguage) {
    showFew();
    search("zzz");
    list().toggleEditMode();
    QSignalSpy texts(&list(), &AppListViewController::textsChanged);
    (void)app_.services().language.setLanguage("zh-Hans");
    EXPECT_EQ(texts.count(), 1);
    const ui::Texts& chinese = app_.services().texts;
    EXPECT_EQ(list().title(), chinese("App List"));
    EXPECT_EQ(list().rightBarButtonItem()->title(), chinese("Done"));
    EXPECT_TRUE(list().segmentTitles()[0].startsWith(chinese("User Apps")));
    EXPECT_EQ(list().emptyText(), chinese("No Matching Apps"));
    EXPECT_EQ(list().selectAllTitle(), chinese("Select All"));
    EXPECT_EQ(list().swipeHint(), chinese("Swipe Left Hint"));
    EXPECT_EQ(list().searchPlaceholder(), chinese("Search Apps"));
    EXPECT_EQ(list().cleanButtonTitle(), chinese("Clean Selected Apps"));
    EXPECT_NE(chinese("App List"), QLatin1String("Apps"));
    search("");
    EXPECT_TRUE(rows().at(2).detail.startsWith(chinese("Total Size")));
    EXPECT_EQ(rows().at(2).actions[0].toMap()[QStringLiteral("title")].toString(),
              chinese("Clean"));
}

// --- Scrolling ---

TEST_F(AppListViewControllerTest, ReportsHowItScrolls) {
    std::vector<std::pair<double, double>> reports;
    const auto observer =
        app_.notifications.observe("TabBarScrollNotification", [&](const auto& info) {
            reports.emplace_back(info.at("contentOffsetY"), info.at("lastContentOffsetY"));
        });
    list().scrolling()->didScroll(12);
    list().scrolling()->didScroll(40);
    list().scrolling()->didEnd(44);
    list().scrolling()->didScroll(50);
    EXPECT_EQ(reports, (std::vector<std::pair<double, double>>{{12, 0}, {40, 12}, {50, 44}}));
}

}  // namespace
}  // namespace sweepwright::test
