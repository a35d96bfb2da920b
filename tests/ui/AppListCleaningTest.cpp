#include <cerrno>

#include "ui/AppScreensTest.h"

namespace sweepwright::test {
namespace {

using ui::AppListViewController;
using ui::SwipeAction;
using Names = std::vector<std::string>;

class AppListCleaningTest : public AppScreensTest {
  protected:
    [[nodiscard]] bool hasCaches(const char* identifier) {
        return app_.device.exists(std::string("/var/mobile/Containers/Data/Application/") +
                                  identifier + "/Library/Caches/responses");
    }
    // The alert that tells how far a clean is has given way to the one that tells its outcome.
    void finishCleaning() {
        runUntil([&] {
            const ui::AlertController* top = app_.presenter().alert();
            return top != nullptr && !top->busy();
        });
    }
};

// --- Swipes ---

TEST_F(AppListCleaningTest, OffersCleaningAndProtectionOfAnAppThatIsNotProtected) {
    showFew();
    const std::vector<SwipeAction> expected{
        {QStringLiteral("Clean"), SwipeAction::Style::Destructive, QStringLiteral("trash.fill"),
         QStringLiteral("systemRed"), SwipeAction::Effect::Clean},
        {QStringLiteral("Protect"), SwipeAction::Style::Normal,
         QStringLiteral("checkmark.shield.fill"), QStringLiteral("systemGreen"),
         SwipeAction::Effect::ToggleWhitelist}};
    EXPECT_EQ(list().trailingSwipeActions(0), expected);
}

TEST_F(AppListCleaningTest, OffersOnlyTheEndOfProtectionOfAProtectedApp) {
    showFew();
    const std::vector<SwipeAction> expected{
        {QStringLiteral("Stop Protecting"), SwipeAction::Style::Normal,
         QStringLiteral("minus.circle.fill"), QStringLiteral("systemOrange"),
         SwipeAction::Effect::ToggleWhitelist}};
    EXPECT_EQ(list().trailingSwipeActions(1), expected);
}

TEST_F(AppListCleaningTest, OffersTheSameWithoutSymbolsInThePlainerForm) {
    showFew();
    std::vector<SwipeAction> expected = list().trailingSwipeActions(0);
    for (SwipeAction& action : expected)
        action.symbol.clear();
    EXPECT_EQ(list().editActions(0), expected);
}

TEST_F(AppListCleaningTest, OffersNoSwipeOfSystemAppsInEditModeAndBeyondTheList) {
    showFew();
    EXPECT_TRUE(list().trailingSwipeActions(-1).empty());
    EXPECT_TRUE(list().trailingSwipeActions(3).empty());
    list().toggleEditMode();
    EXPECT_TRUE(list().trailingSwipeActions(0).empty());
    EXPECT_TRUE(list().editActions(0).empty());
    list().toggleEditMode();
    list().setSelectedSegment(AppListViewController::SystemApps);
    EXPECT_TRUE(list().trailingSwipeActions(0).empty());
    EXPECT_TRUE(rows().at(0).actions.isEmpty());
}

TEST_F(AppListCleaningTest, ProtectsAnAppByASwipeAndDrawsItsRowAnew) {
    showFew();
    const platform::LogCapture log;
    int told = 0;
    const auto observer =
        app_.notifications.observe("WhitelistUpdated", [&](const auto&) { ++told; });
    QSignalSpy ended(&list(), &AppListViewController::swipeActionEnded);
    QSignalSpy changed(&rows(), &ui::AppListModel::dataChanged);
    list().performSwipeAction(0, 1);
    EXPECT_TRUE(isProtected("com.example.alpha"));
    EXPECT_TRUE(log.contains("✅ 已添加到白名单: com.example.alpha"));
    EXPECT_EQ(told, 1);
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(detail(0), "✅ Cache: 30.00 MB | Temporary: 2.00 MB");
    ASSERT_EQ(ended.count(), 1);
    EXPECT_TRUE(ended[0][0].toBool());
}

TEST_F(AppListCleaningTest, EndsProtectionByASwipe) {
    showFew();
    const platform::LogCapture log;
    list().performSwipeAction(1, 0);
    EXPECT_FALSE(isProtected("com.example.bravo"));
    EXPECT_TRUE(log.contains("✅ 已从白名单移除: com.example.bravo"));
    EXPECT_EQ(detail(1), "Total: 20.00 MB");
}

TEST_F(AppListCleaningTest, DrawsAllRowsAnewWhenNoneIsGiven) {
    showFew();
    bool performed = false;
    list().toggleWhitelistForApp(list().userApps()[2], std::nullopt,
                                 [&](bool success) { performed = success; });
    EXPECT_TRUE(performed);
    EXPECT_TRUE(rows().at(2).isProtected);
}

TEST_F(AppListCleaningTest, ChangesNothingWhenTheListOfProtectedAppsCannotBeChanged) {
    showFew();
    damageDefaults();
    app_.services().appWhitelist.reload();
    QSignalSpy ended(&list(), &AppListViewController::swipeActionEnded);
    int told = 0;
    const auto observer =
        app_.notifications.observe("WhitelistUpdated", [&](const auto&) { ++told; });
    list().performSwipeAction(0, 1);
    EXPECT_FALSE(isProtected("com.example.alpha"));
    ASSERT_EQ(ended.count(), 1);
    EXPECT_FALSE(ended[0][0].toBool());
    EXPECT_EQ(told, 0);
}

TEST_F(AppListCleaningTest, CleansAtOnceByASwipeAndTellsWhenItHasEnded) {
    showFew();
    QSignalSpy ended(&list(), &AppListViewController::swipeActionEnded);
    list().performSwipeAction(0, 0);
    EXPECT_TRUE(alert().busy());
    EXPECT_EQ(alert().title(), QLatin1String("Cleaning"));
    EXPECT_EQ(ended.count(), 0);
    finishCleaning();
    EXPECT_FALSE(hasCaches("com.example.alpha"));
    ASSERT_EQ(ended.count(), 1);
    EXPECT_TRUE(ended[0][0].toBool());
}

TEST_F(AppListCleaningTest, IgnoresASwipeActionThatIsNotThere) {
    showFew();
    list().performSwipeAction(0, 2);
    list().performSwipeAction(1, 1);
    list().performSwipeAction(9, 0);
    list().performSwipeAction(0, -1);
    EXPECT_FALSE(app_.presenter().active());
    EXPECT_TRUE(isProtected("com.example.bravo"));
}

// --- One clean ---

TEST_F(AppListCleaningTest, AsksBeforeItCleansTheAppThatWasTapped) {
    showFew();
    list().didSelectRow(0);
    EXPECT_EQ(alert().title(), QLatin1String("Clean App Cache?"));
    EXPECT_EQ(alert().message(),
              app_.services().texts("Clean App Cache Message", {"Alpha", "32.00 MB"}));
    EXPECT_EQ(actionTitles(alert()), (Names{"Clean", "Cancel"}));
    EXPECT_EQ(alert().actions()[0]->style(), ui::AlertAction::Destructive);
    EXPECT_EQ(alert().actions()[1]->style(), ui::AlertAction::Cancel);
    choose("Cancel");
    EXPECT_FALSE(app_.presenter().active());
    EXPECT_TRUE(hasCaches("com.example.alpha"));
}

TEST_F(AppListCleaningTest, WarnsBeforeItCleansASystemApp) {
    showFew();
    list().setSelectedSegment(AppListViewController::SystemApps);
    list().didSelectRow(1);
    EXPECT_EQ(alert().title(), QLatin1String("Clean System App Cache?"));
    const ui::Texts& texts = app_.services().texts;
    EXPECT_EQ(alert().message(), texts("Clean App Cache Warning") +
                                     texts("Clean App Cache Message", {"Safari", "5.00 MB"}));
}

TEST_F(AppListCleaningTest, OffersToCleanAProtectedAppThatIsTapped) {
    showFew();
    list().didSelectRow(1);
    EXPECT_EQ(alert().title(), QLatin1String("Clean App Cache?"));
    choose("Clean");
    finishCleaning();
    EXPECT_FALSE(hasCaches("com.example.bravo"));
}

TEST_F(AppListCleaningTest, TellsOfOneAppAndOfSeveralWhatCouldNotBeRemoved) {
    showFew();
    app_.core.files.failWhere(
        [](Operation operation, const std::string& path) {
            return operation == Operation::RemoveFileAt && path.ends_with("/responses");
        },
        EPERM);
    const std::string entry =
        "/var/mobile/Containers/Data/Application/com.example.alpha/Library/Caches/responses";
    const QString left = u'\n' + app_.services().texts("Clean Left Counted Entries",
                                                       {1U, entry + ": Operation not permitted"});
    list().didSelectRow(0);
    choose("Clean");
    finishCleaning();
    EXPECT_EQ(alert().message(),
              app_.services().texts("Clean Success Message", {"32.00 MB"}) + left);
    choose("OK");
    finishLoading();
    list().performBatchClean({list().currentApps().at(0)});
    finishCleaning();
    EXPECT_EQ(alert().message(),
              app_.services().texts("Clean Success Message", {"30.00 MB"}) + left);
}

TEST_F(AppListCleaningTest, IgnoresATapBeyondTheList) {
    showFew();
    list().didSelectRow(-1);
    list().didSelectRow(3);
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(AppListCleaningTest, TellsHowFarItIsThenWhatItFreedAndScansAgain) {
    showFew();
    list().didSelectRow(0);
    choose("Clean");
    EXPECT_EQ(alert().title(), QLatin1String("Cleaning"));
    EXPECT_EQ(alert().message(), QLatin1String("Cleaning Alpha..."));
    EXPECT_TRUE(alert().busy());
    EXPECT_TRUE(alert().actions().isEmpty());
    QStringList messages;
    const auto* busy = &alert();
    QObject::connect(busy, &ui::AlertController::messageChanged,
                     [&] { messages.append(busy->message()); });
    finishCleaning();
    EXPECT_TRUE(messages.contains(
        app_.services().texts("Clean App Cache Message Format", {100.0, "Alpha"})));
    EXPECT_EQ(alert().title(), QLatin1String("Clean Completed"));
    EXPECT_EQ(alert().message(), app_.services().texts("Clean Success Message", {"32.00 MB"}));
    EXPECT_EQ(actionTitles(alert()), (Names{"OK"}));
    EXPECT_TRUE(list().loading());
    finishLoading();
    EXPECT_EQ(titles(), (Names{"Bravo", "Charlie", "Alpha"}));
    choose("OK");
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(AppListCleaningTest, TellsWhyAnAppCouldNotBeCleaned) {
    showFew();
    damageDefaults();
    QSignalSpy ended(&list(), &AppListViewController::swipeActionEnded);
    list().performSwipeAction(0, 0);
    finishCleaning();
    EXPECT_EQ(alert().title(), QLatin1String("Clean Failed"));
    EXPECT_FALSE(alert().message().isEmpty());
    EXPECT_NE(alert().message(), QLatin1String("Clean Failed"));
    EXPECT_EQ(actionTitles(alert()), (Names{"OK"}));
    EXPECT_FALSE(list().loading());
    EXPECT_TRUE(hasCaches("com.example.alpha"));
    ASSERT_EQ(ended.count(), 1);
    EXPECT_FALSE(ended[0][0].toBool());
}

TEST_F(AppListCleaningTest, TakesItsAlertAwayWhenItIsGoneBeforeTheCleanHasEnded) {
    showFew();
    ui::NavigationController& navigation = app_.scene().tabBarController()->at(2);
    navigation.push(std::make_unique<AppListViewController>(app_.services()));
    auto& pushed = *qobject_cast<AppListViewController*>(navigation.top());
    runUntil([&] { return !pushed.loading(); });
    pushed.performSwipeAction(0, 0);
    EXPECT_TRUE(app_.presenter().active());
    navigation.pop();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    runUntil([&] { return !app_.presenter().active(); });
    EXPECT_EQ(app_.presenter().alert(), nullptr);
}

// --- Edit mode ---

TEST_F(AppListCleaningTest, SelectsInsteadOfAskingInEditMode) {
    showFew();
    list().rightBarButtonItem()->trigger();
    EXPECT_TRUE(list().isEditingMode());
    EXPECT_EQ(list().rightBarButtonItem()->title(), QLatin1String("Done"));
    EXPECT_EQ(list().selectionCountText(), QLatin1String("No Apps Selected"));
    EXPECT_EQ(list().selectAllTitle(), QLatin1String("Select All"));
    EXPECT_FALSE(list().cleanButtonEnabled());
    list().didSelectRow(0);
    list().didSelectRow(2);
    EXPECT_FALSE(app_.presenter().active());
    EXPECT_EQ(list().selectionCountText(), QLatin1String("2 selected"));
    EXPECT_EQ(list().selectAllTitle(), QLatin1String("Select All"));
    EXPECT_TRUE(list().cleanButtonEnabled());
    list().didSelectRow(1);
    EXPECT_EQ(list().selectAllTitle(), QLatin1String("Deselect All"));
    list().didSelectRow(1);
    EXPECT_EQ(list().selectionCountText(), QLatin1String("2 selected"));
}

TEST_F(AppListCleaningTest, LosesTheSelectionWithEditMode) {
    showFew();
    list().toggleEditMode();
    list().didSelectRow(0);
    list().toggleEditMode();
    EXPECT_FALSE(list().isEditingMode());
    EXPECT_EQ(list().rightBarButtonItem()->title(), QLatin1String("Select"));
    list().toggleEditMode();
    EXPECT_EQ(rows().selectedCount(), 0);
}

TEST_F(AppListCleaningTest, SelectsAllAndNone) {
    showFew();
    list().toggleEditMode();
    list().didSelectRow(1);
    list().toggleSelectAll();
    EXPECT_EQ(rows().selectedCount(), 3);
    EXPECT_EQ(list().selectAllTitle(), QLatin1String("Deselect All"));
    EXPECT_EQ(list().selectionCountText(), QLatin1String("3 selected"));
    list().toggleSelectAll();
    EXPECT_EQ(rows().selectedCount(), 0);
    EXPECT_EQ(list().selectAllTitle(), QLatin1String("Select All"));
}

TEST_F(AppListCleaningTest, HasNothingToSelectInAnEmptyList) {
    finishLoading();
    list().toggleEditMode();
    list().toggleSelectAll();
    EXPECT_EQ(list().selectAllTitle(), QLatin1String("Select All"));
    EXPECT_EQ(list().selectionCountText(), QLatin1String("No Apps Selected"));
}

TEST_F(AppListCleaningTest, SelectsOnlyWhatTheSearchShows) {
    showFew();
    list().filterAppsWithSearchText(QStringLiteral("example.alp"));
    list().toggleEditMode();
    list().toggleSelectAll();
    EXPECT_EQ(list().selectionCountText(), QLatin1String("1 selected"));
    EXPECT_EQ(list().selectAllTitle(), QLatin1String("Deselect All"));
}

TEST_F(AppListCleaningTest, KeepsEditModeAndSelectionWhenAScanComes) {
    showFew();
    list().loadApps();
    list().toggleEditMode();
    list().didSelectRow(0);
    list().didSelectRow(2);
    setCaches(app_.device, "org.example.charlie", 90 * kMiB);
    uninstall(app_.device, "com.example.alpha");
    finishLoading();
    reload();
    EXPECT_TRUE(list().isEditingMode());
    EXPECT_EQ(titles(), (Names{"Charlie", "Bravo"}));
    EXPECT_EQ(rows().selectedRows(), std::vector<int>{0});
    EXPECT_EQ(list().selectionCountText(), QLatin1String("1 selected"));
}

// --- A batch ---

TEST_F(AppListCleaningTest, TellsThatNothingIsSelected) {
    showFew();
    list().toggleEditMode();
    list().cleanSelectedApps();
    EXPECT_EQ(alert().title(), QLatin1String("No Apps Selected"));
    EXPECT_EQ(actionTitles(alert()), (Names{"OK"}));
}

TEST_F(AppListCleaningTest, TellsThatAllThatIsSelectedIsProtectedAndCleansNothing) {
    showFew();
    list().toggleEditMode();
    list().didSelectRow(1);
    list().cleanSelectedApps();
    EXPECT_EQ(alert().title(), app_.services().texts("All selected apps are in whitelist"));
    EXPECT_EQ(actionTitles(alert()), (Names{"OK"}));
    choose("OK");
    EXPECT_TRUE(list().isEditingMode());
    EXPECT_TRUE(hasCaches("com.example.bravo"));
}

TEST_F(AppListCleaningTest, AsksBeforeABatchAndCountsOnlyWhatIsNotProtected) {
    showFew();
    list().toggleEditMode();
    list().toggleSelectAll();
    list().cleanSelectedApps();
    EXPECT_EQ(alert().title(), QLatin1String("Clean Selected"));
    EXPECT_EQ(alert().message(), app_.services().texts("Clean Selected Apps Message", {2}));
    EXPECT_EQ(actionTitles(alert()), (Names{"Clean", "Cancel"}));
    EXPECT_EQ(alert().actions()[0]->style(), ui::AlertAction::Destructive);
    choose("Cancel");
    EXPECT_TRUE(list().isEditingMode());
    EXPECT_EQ(rows().selectedCount(), 3);
    EXPECT_TRUE(hasCaches("com.example.alpha"));
}

TEST_F(AppListCleaningTest, CleansTheSelectedAppsInOrderAndLeavesEditMode) {
    installFew();
    install(app_.device, {"org.example.charlie", "Charlie", kMiB, 3 * kMiB});
    reload();
    list().toggleEditMode();
    list().didSelectRow(2);
    list().didSelectRow(1);
    list().didSelectRow(0);
    list().cleanSelectedApps();
    choose("Clean");
    EXPECT_EQ(alert().title(), QLatin1String("Cleaning"));
    EXPECT_EQ(alert().message(), QLatin1String("Cleaning 2 apps..."));
    EXPECT_TRUE(alert().busy());
    QStringList messages;
    const auto* busy = &alert();
    QObject::connect(busy, &ui::AlertController::messageChanged,
                     [&] { messages.append(busy->message()); });
    finishCleaning();
    ASSERT_FALSE(messages.isEmpty());
    EXPECT_TRUE(messages.first().startsWith(QLatin1String("Cleaning com.example.alpha... ")));
    EXPECT_EQ(messages.last(), QLatin1String("Cleaning org.example.charlie... 100%"));
    EXPECT_EQ(alert().title(), QLatin1String("Clean Completed"));
    EXPECT_EQ(alert().message(), app_.services().texts("Clean Success Message", {"36.00 MB"}));
    EXPECT_FALSE(list().isEditingMode());
    EXPECT_EQ(list().rightBarButtonItem()->title(), QLatin1String("Select"));
    EXPECT_TRUE(list().loading());
    EXPECT_FALSE(hasCaches("com.example.alpha"));
    EXPECT_TRUE(hasCaches("com.example.bravo"));
}

TEST_F(AppListCleaningTest, TellsWhyABatchFailedAndLeavesEditModeAllTheSame) {
    showFew();
    list().toggleEditMode();
    list().didSelectRow(0);
    list().cleanSelectedApps();
    damageDefaults();
    choose("Clean");
    finishCleaning();
    EXPECT_EQ(alert().title(), QLatin1String("Clean Failed"));
    EXPECT_FALSE(list().isEditingMode());
    EXPECT_TRUE(list().loading());
    EXPECT_TRUE(hasCaches("com.example.alpha"));
}

}  // namespace
}  // namespace sweepwright::test
