#include <QSignalSpy>

#include "ui/ViewTest.h"
#include "ui/home/CircularProgressView.h"
#include "ui/kit/Appearance.h"
#include "ui/kit/SpringMotion.h"
#include "ui/presentation/MainQueueHook.h"
#include "ui/shell/Screens.h"
#include "ui/support/HomeTest.h"
#include "ui/support/SteadyFrames.h"

namespace sweepwright::test {
namespace {

using ui::CircularProgressView;
using ui::CleanItemCardView;
using ui::ViewController;

constexpr std::uint64_t kGigabyte = std::uint64_t{1} << 30U;

QStringList warnings;
QtMessageHandler previousHandler = nullptr;

// What the views complain about while they run is a failure.
void noteWarning(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (type != QtDebugMsg && type != QtInfoMsg && text.contains(QLatin1String("qrc:")))
        warnings.append(text);
    previousHandler(type, context, text);
}

/// The home screen in a window on a volume whose fill a test chooses.
class HomeView : public ViewTest {
  protected:
    HomeView() : HomeView(TestAppOptions{}, {390, 844}) {}
    HomeView(const TestAppOptions& options, QSize size)
        : app_(options, [this](const ui::ScreenServices& services) {
              files_.emplace(services.files);
              files_->volume = platform::FileSystemAttributes{100 * kGigabyte, 30 * kGigabyte};
              storage_.emplace(services.device, *files_);
              return ui::makeScreens(withStorage(services, *storage_));
          }) {
        warnings.clear();
        previousHandler = qInstallMessageHandler(noteWarning);
        hook_.emplace(app_.mainQueue);
        app_.show(size);
        // The first scan is through, so that it disturbs no test.
        EXPECT_TRUE(waitUntil(
            [&] { return screen().appCacheCard().sizeText() == QStringLiteral("0 B · Apps: 0"); }));
    }
    ~HomeView() override {
        qInstallMessageHandler(previousHandler);
        EXPECT_EQ(warnings, QStringList());
    }

    ViewController& screen() {
        return *qobject_cast<ViewController*>(app_.scene().tabBarController()->at(0).root());
    }
    CleanItemCardView& card(int index) { return *screen().cards()[index]; }
    QQuickItem* cardItem(int index) {
        return app_.item(qPrintable(QStringLiteral("card%1").arg(index)));
    }
    // An item of this name within another.
    static QQuickItem* in(QQuickItem* root, const char* name) {
        QQuickItem* found = firstItem(root, [&](const QQuickItem* each) {
            return each->objectName() == QLatin1String(name);
        });
        if (found == nullptr) ADD_FAILURE() << "no item named " << name;
        return found == nullptr ? root : found;
    }
    static QRectF frame(const QQuickItem* item) {
        return item->mapRectToScene(QRectF(0, 0, item->width(), item->height()));
    }
    // How much an item is shrunk by a press.
    static double pressed(const QQuickItem* item) { return frame(item).width() / item->width(); }
    void click(const QQuickItem* item) {
        QTest::mouseClick(&app_.window(), Qt::LeftButton, {}, TestApp::middleOf(item));
    }
    // What the engine reports waits until it may come: work that was started is not over.
    void holdReports() { hook_.reset(); }
    void letReportsCome() { hook_.emplace(app_.mainQueue); }
    bool alertComes(const char* title) {
        return waitUntil([&] {
            const ui::AlertController* alert = app_.presenter().alert();
            return alert != nullptr && alert->title() == QString::fromUtf8(title);
        });
    }
    void choose(const char* text) {
        const QQuickItem* chosen = button(app_, text);
        ASSERT_NE(chosen, nullptr);
        click(chosen);
    }
    bool nothingPresented() {
        return waitUntil([&] { return app_.presenter().rowCount() == 0; });
    }
    static std::vector<std::string> rows(int count) {
        std::vector<std::string> made;
        for (int i = 0; i < count; ++i)
            made.push_back("/var/mobile/tmp/row" + std::to_string(i));
        return made;
    }
    bool heightBecomes(int index, double height) {
        return waitUntil([&] { return cardItem(index)->height() == height; });
    }
    void scrollToEnd() {
        QQuickItem* pane = app_.item("homePane");
        pane->setProperty("contentY", pane->property("contentHeight").toDouble() +
                                          pane->property("bottomMargin").toDouble() -
                                          pane->height());
    }

    std::optional<VolumeFiles> files_;
    std::optional<StorageAnalyzer> storage_;
    TestApp app_;
    std::optional<ui::MainQueueHook> hook_;
};

// --- Cards ---

TEST_F(HomeView, ATapOpensACardAndMovesTheOthersBelowIt) {
    const SteadyFrames frames;
    card(0).updateFileList(rows(3));
    const double below = cardItem(1)->y();
    EXPECT_DOUBLE_EQ(cardItem(0)->height(), 60.0);
    tap(app_, TestApp::middleOf(in(cardItem(0), "title")));
    EXPECT_TRUE(card(0).isExpanded());
    EXPECT_LT(cardItem(0)->height(), 166.0);
    ASSERT_TRUE(heightBecomes(0, 166.0));
    EXPECT_TRUE(waitUntil([&] { return cardItem(1)->y() == below + 106.0; }));
    tap(app_, TestApp::middleOf(in(cardItem(0), "title")));
    ASSERT_TRUE(heightBecomes(0, 60.0));
    EXPECT_TRUE(waitUntil([&] { return cardItem(1)->y() == below; }));
}

TEST_F(HomeView, AnOpenCardShowsEightRowsOfMany) {
    card(0).updateFileList(rows(5000));
    card(0).toggleExpanded(false);
    EXPECT_DOUBLE_EQ(cardItem(0)->height(), 316.0);
    QQuickItem* table = in(cardItem(0), "fileTable");
    EXPECT_DOUBLE_EQ(table->height(), 240.0);
    int drawn = 0;
    for (const QQuickItem* row : table->property("contentItem").value<QQuickItem*>()->childItems())
        drawn += row->objectName().startsWith(QLatin1String("fileRow")) ? 1 : 0;
    EXPECT_GE(drawn, 8);
    EXPECT_LE(drawn, 10);
}

TEST_F(HomeView, AnOpenCardGrowsWithItsRowsUpToEight) {
    card(0).toggleExpanded(false);
    EXPECT_DOUBLE_EQ(cardItem(0)->height(), 76.0);
    card(0).updateFileList(rows(1));
    ASSERT_TRUE(heightBecomes(0, 106.0));
    card(0).updateFileList(rows(20));
    ASSERT_TRUE(heightBecomes(0, 316.0));
}

TEST_F(HomeView, TheArrowOpensACardByMouseAndByKeyboard) {
    QQuickItem* arrow = in(cardItem(2), "expandButton");
    click(arrow);
    EXPECT_TRUE(card(2).isExpanded());
    arrow->forceActiveFocus(Qt::TabFocusReason);
    key(app_, Qt::Key_Space);
    EXPECT_FALSE(card(2).isExpanded());
}

TEST_F(HomeView, OpensAtOnceForWhoWantsReducedMotion) {
    ui::Appearance::shared().setReducedMotion(true);
    card(0).updateFileList(rows(3));
    click(in(cardItem(0), "title"));
    EXPECT_DOUBLE_EQ(cardItem(0)->height(), 166.0);
}

TEST_F(HomeView, ATapOnARowOffersToOpenItAndDoesNotReachTheCard) {
    app_.device.file("/var/mobile/tmp/row1", 10);
    card(0).updateFileList(rows(3));
    card(0).toggleExpanded(false);
    // Rows are in reach once they have been drawn.
    (void)app_.window().grabWindow();
    tap(app_, TestApp::middleOf(in(cardItem(0), "fileRow1")));
    ASSERT_NE(app_.presenter().alert(), nullptr);
    EXPECT_EQ(app_.presenter().alert()->title(), QStringLiteral("Open File"));
    EXPECT_TRUE(card(0).isExpanded());
    choose("Open Filza");
    EXPECT_EQ(app_.opener.openedAddresses, QByteArrayList{"filza://view=/var/mobile/tmp/row1"});
}

TEST_F(HomeView, ATapOnTheCleanButtonDoesNotReachTheCard) {
    QSignalSpy cleans(&card(1), &CleanItemCardView::cleanTapped);
    QSignalSpy taps(&card(1), &CleanItemCardView::tapped);
    tap(app_, TestApp::middleOf(in(cardItem(1), "cleanButton")));
    EXPECT_EQ(cleans.count(), 1);
    EXPECT_EQ(taps.count(), 0);
    EXPECT_FALSE(card(1).isExpanded());
    EXPECT_TRUE(alertComes("Clean Completed"));
}

TEST_F(HomeView, ADoubleClickOnACleanButtonCleansOnce) {
    app_.device.file("/var/mobile/Library/Cookies/c", 10);
    const QPoint at = TestApp::middleOf(in(cardItem(2), "cleanButton"));
    holdReports();
    QTest::mouseDClick(&app_.window(), Qt::LeftButton, {}, at);
    letReportsCome();
    ASSERT_TRUE(alertComes("Clean Completed"));
    EXPECT_EQ(app_.presenter().alert()->message(), QStringLiteral("10 B freed."));
    EXPECT_EQ(app_.core.statistics.totals().cleanCount, 1);
    choose("OK");
    EXPECT_TRUE(nothingPresented());
}

TEST_F(HomeView, ADoubleClickOnTheScanButtonScansOnce) {
    holdReports();
    QTest::mouseDClick(&app_.window(), Qt::LeftButton, {},
                       TestApp::middleOf(app_.item("scanButton")));
    letReportsCome();
    ASSERT_TRUE(alertComes("Scan Completed"));
    choose("OK");
    EXPECT_TRUE(nothingPresented());
    EXPECT_FALSE(screen().scanning());
}

// --- Buttons ---

TEST_F(HomeView, ButtonsShrinkUnderTheFingerAndSpringBack) {
    scrollToEnd();
    const struct {
        const QQuickItem* button;
        double scale;
        int milliseconds;
        double damping;
        double velocity;
    } buttons[] = {{app_.item("scanButton"), 0.95, 200, 0.6, 0.8},
                   {in(cardItem(3), "cleanButton"), 0.92, 200, 0.5, 0.8},
                   {app_.item("cleanAllButton"), 0.95, 250, 0.5, 1.0}};
    for (const auto& [button, scale, milliseconds, damping, velocity] : buttons) {
        const QPoint at = TestApp::middleOf(button);
        QTest::mousePress(&app_.window(), Qt::LeftButton, {}, at);
        EXPECT_TRUE(waitUntil([&] { return std::abs(pressed(button) - scale) < 1e-6; }));
        // Let go elsewhere, so that nothing is started.
        QTest::mouseMove(&app_.window(), at - QPoint(0, 200));
        QTest::mouseRelease(&app_.window(), Qt::LeftButton, {}, at - QPoint(0, 200));
        EXPECT_TRUE(waitUntil([&] { return std::abs(pressed(button) - 1.0) < 1e-9; }));
        const auto* spring = button->findChild<ui::SpringMotion*>();
        ASSERT_NE(spring, nullptr);
        EXPECT_EQ(spring->duration(), milliseconds);
        EXPECT_DOUBLE_EQ(spring->damping(), damping);
        EXPECT_DOUBLE_EQ(spring->velocity(), velocity);
    }
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(HomeView, ShowsAnIndicatorWhileItScansAndDisablesTheButton) {
    QQuickItem* button = app_.item("scanButton");
    QQuickItem* indicator = app_.item("scanIndicator");
    EXPECT_FALSE(indicator->isVisible());
    holdReports();
    click(button);
    EXPECT_TRUE(indicator->isVisible());
    EXPECT_FALSE(button->isEnabled());
    EXPECT_EQ(TestApp::middleOf(indicator), QPoint(195, 422));
    letReportsCome();
    ASSERT_TRUE(alertComes("Scan Completed"));
    EXPECT_FALSE(indicator->isVisible());
    choose("OK");
    EXPECT_TRUE(button->isEnabled());
}

// --- A whole clean ---

TEST_F(HomeView, AWholeCleanGoesFromTheTapToTheRefreshedRing) {
    app_.device.file("/var/mobile/Library/Cookies/c", 1024);
    app_.device.file("/var/mobile/Library/Logs/l", 1024);
    const auto* ring = qobject_cast<CircularProgressView*>(app_.item("storageRing"));
    ASSERT_TRUE(waitUntil([&] { return ring->strokeEnd() == 0.7; }));
    EXPECT_EQ(app_.item("storageRingLabel")->property("text").toString(),
              QStringLiteral("70%\nUsed"));
    scrollToEnd();
    click(app_.item("cleanAllButton"));
    ASSERT_TRUE(alertComes("Clean Everything?"));
    // There is more room afterwards.
    files_->volume = platform::FileSystemAttributes{100 * kGigabyte, 45 * kGigabyte};
    choose("Clean");
    ASSERT_TRUE(alertComes("Clean Completed"));
    EXPECT_EQ(app_.presenter().alert()->message(), QStringLiteral("2.0 KB freed."));
    choose("OK");
    ASSERT_TRUE(nothingPresented());
    EXPECT_FALSE(app_.device.exists("/var/mobile/Library/Cookies/c"));
    ASSERT_TRUE(waitUntil([&] { return ring->strokeEnd() == 0.55; }));
    EXPECT_EQ(app_.item("storageRingLabel")->property("text").toString(),
              QStringLiteral("55%\nUsed"));
    ASSERT_TRUE(waitUntil([&] {
        return in(cardItem(2), "size")->property("text").toString() == QStringLiteral("0 B");
    }));
}

// --- Scrolling and room ---

TEST_F(HomeView, TellsTheShellHowItScrolls) {
    EXPECT_TRUE(swipeTurnsBar(app_, {195, 560}, {195, 260}, true));
    EXPECT_TRUE(swipeTurnsBar(app_, {195, 260}, {195, 440}, false));
    ASSERT_TRUE(waitUntil([&] { return !app_.item("homePane")->property("moving").toBool(); }));
    EXPECT_DOUBLE_EQ(screen().scrolling()->lastContentOffsetY(),
                     app_.item("homePane")->property("offsetY").toDouble());
}

TEST_F(HomeView, EndsAboveTheFloatingBar) {
    for (int i = 0; i < 5; ++i)
        card(i).toggleExpanded(false);
    scrollToEnd();
    app_.scene().showTabBar();
    const QQuickItem* bar = app_.item("tabBar");
    ASSERT_TRUE(waitUntil([&] { return bar->y() == 844.0 - 10.0 - 65.0; }));
    EXPECT_LE(frame(app_.item("creditLink")).bottom(), bar->y());
}

TEST_F(HomeView, BringsIntoSightWhatTheKeyboardReaches) {
    QQuickItem* last = app_.item("cleanAllButton");
    EXPECT_GT(frame(last).bottom(), 844.0 - 85.0);
    last->forceActiveFocus(Qt::TabFocusReason);
    EXPECT_TRUE(waitUntil([&] { return frame(last).bottom() <= 844.0 - 85.0; }));
    app_.item("scanButton")->forceActiveFocus(Qt::BacktabFocusReason);
    EXPECT_TRUE(waitUntil([&] { return frame(app_.item("scanButton")).top() >= 52.0; }));
}

TEST_F(HomeView, FollowsTheCreditLink) {
    scrollToEnd();
    click(app_.item("creditLink"));
    EXPECT_EQ(app_.opener.opened.size(), 1U);
}

// --- Any text in any size ---

class HomeViewTexts : public HomeView, public testing::WithParamInterface<double> {
  protected:
    void SetUp() override {
        ui::Appearance::shared().setTextScale(GetParam());
        const std::vector<std::string> longRows(
            12, "/var/mobile/Library/Caches/" + std::string(300, 'x') + ".sqlite3");
        for (int i = 0; i < 5; ++i) {
            card(i).updateFileList(longRows);
            card(i).toggleExpanded(false);
        }
        card(0).updateSize(QStringLiteral("123456789.99 TB · 应用: 18446744073709551615"));
        card(1).updateSize(QStringLiteral("0 B"));
        card(2).updateSize(QStringLiteral("扫描中…"));
        // Columns lay out with the next frame.
        (void)app_.window().grabWindow();
    }
};

TEST_P(HomeViewTexts, DoNotOverlapInACard) {
    for (int i = 0; i < 5; ++i) {
        QQuickItem* item = cardItem(i);
        const QRectF whole = frame(item);
        const QRectF title = frame(in(item, "title"));
        const QRectF size = frame(in(item, "size"));
        const QRectF button = frame(in(item, "cleanButton"));
        const QRectF arrow = frame(in(item, "expandButton"));
        const QRectF table = frame(in(item, "fileTable"));
        EXPECT_TRUE(whole.contains(title));
        EXPECT_LE(title.bottom(), size.top());
        EXPECT_LE(size.bottom(), table.top());
        EXPECT_LE(title.right(), button.left());
        EXPECT_LE(size.right(), button.left());
        EXPECT_LE(button.right(), arrow.left());
        EXPECT_TRUE(whole.contains(table));
        const QQuickItem* row = in(item, "fileRow0");
        EXPECT_LE(row->implicitHeight(), row->height());
        EXPECT_LE(frame(row).right(), whole.right());
    }
}

TEST_P(HomeViewTexts, DoNotOverlapOnTheScreen) {
    double bottom = 0.0;
    for (const char* name : {"storageRingLabel", "storageInfo", "capacityNote", "reboundNote",
                             "scanButton", "cleanItemsTitle", "card0", "card1", "card2", "card3",
                             "card4", "cleanAllButton", "developerHandle", "creditLink"}) {
        const QRectF place = frame(app_.item(name));
        EXPECT_GE(place.top(), bottom) << name;
        EXPECT_GE(place.left(), 0.0) << name;
        EXPECT_LE(place.right(), 390.0) << name;
        bottom = place.bottom();
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, HomeViewTexts, testing::Values(0.8, 1.0, 1.5, 2.0));

class HomeViewOnATablet : public HomeView {
  protected:
    HomeViewOnATablet() : HomeView(TestAppOptions{.idiom = platform::Idiom::Pad}, {820, 1180}) {}
};

TEST_F(HomeViewOnATablet, KeepsToAColumnInTheMiddle) {
    const QRectF column = frame(cardItem(0));
    EXPECT_DOUBLE_EQ(column.width(), 560.0);
    EXPECT_DOUBLE_EQ(column.center().x(), 410.0);
    EXPECT_DOUBLE_EQ(frame(app_.item("scanButton")).width(), 560.0);
    EXPECT_DOUBLE_EQ(frame(app_.item("storageRing")).center().x(), 410.0);
}

}  // namespace
}  // namespace sweepwright::test
