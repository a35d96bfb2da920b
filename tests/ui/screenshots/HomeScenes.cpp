#include <QTest>
#include <filesystem>

#include "support/Process.h"
#include "ui/home/ViewController.h"
#include "ui/screenshots/Scene.h"
#include "ui/shell/Screens.h"
#include "ui/support/SampleContent.h"

namespace sweepwright::test {

namespace {

using ui::CleanItemCardView;
using ui::ViewController;

ViewController& screenOf(TestApp& app) {
    return *qobject_cast<ViewController*>(app.scene().tabBarController()->at(0).root());
}

void waitFor(TestApp& app, const std::function<bool()>& done) {
    constexpr int kMilliseconds = 30000;
    const bool came = QTest::qWaitFor(
        [&] {
            app.mainQueue.drain();
            return done();
        },
        kMilliseconds);
    if (!came) qFatal("a scene did not become what it is to show");
}

bool isSettled(ViewController& screen) {
    const QString scanning = QStringLiteral("Scanning…");
    for (const CleanItemCardView* card : screen.cards()) {
        if (card->sizeText() == scanning || card->sizeText().contains(QStringLiteral("中"))) {
            return false;
        }
    }
    return true;
}

// Copied, as it takes a second to make one. What it holds is mostly holes, which cp keeps.
void copySampleDevice(TemporaryDevice& device) {
    static const auto sample = [] {
        auto made = std::make_unique<TemporaryDevice>();
        fillWithSampleDevice(*made);
        return made;
    }();
    for (const auto& old : std::filesystem::directory_iterator(device.root()))
        std::filesystem::remove_all(old.path());
    ProcessOptions copying;
    copying.arguments = {"/bin/cp", "-a", sample->root() + "/.", device.root()};
    const ProcessResult copied = Process::run(copying);
    if (copied.status != 0) qFatal("no sample device: %s", copied.error.c_str());
}

// The sample device's figures are in the cards.
void fill(TestApp& app) {
    waitFor(app, [&] { return isSettled(screenOf(app)); });
    copySampleDevice(app.device);
    screenOf(app).performInitialScan();
    waitFor(app, [&] { return screenOf(app).appCacheCard().fileList()->rowCount() > 0; });
    waitFor(app, [&] { return !screenOf(app).cacheCard().fileList()->sizes().empty(); });
}

void scrollTo(TestApp& app, double y) {
    app.settle();
    QQuickItem* pane = app.item("homePane");
    const double end = pane->property("contentHeight").toDouble() +
                       pane->property("bottomMargin").toDouble() - pane->height();
    const double start = -pane->property("topMargin").toDouble();
    pane->setProperty("contentY", std::max(start, std::min(y, end)));
    app.scene().showTabBar();
}

constexpr double kBottom = 1e6;

void expand(TestApp& app, int index) {
    screenOf(app).cards()[index]->toggleExpanded(false);
}

const char* const kLong =
    "/var/mobile/Library/Caches/com.example.an.application.with.a.name.that.does.not.end/"
    "fsCachedData-0F8E4C1D-7B65-4A39-92C0-8D1E5F7A6B34-and-then-some-more.sqlite3";

// Names beyond all measure, sizes of terabytes, nothing at all.
void extremes(TestApp& app) {
    fill(app);
    ViewController& screen = screenOf(app);
    std::vector<std::string> rows(4000, kLong);
    screen.cacheCard().updateSize(QStringLiteral("1023.9 TB"));
    screen.cacheCard().updateFileList(rows);
    screen.cacheCard().toggleExpanded(false);
    screen.tempCard().updateSize(QStringLiteral("0 B"));
    screen.tempCard().updateFileList({});
    screen.tempCard().toggleExpanded(false);
    screen.appCacheCard().updateSize(QStringLiteral("1234567.8 GB · Apps: 123456"));
}

void cleaning(TestApp& app) {
    fill(app);
    ViewController& screen = screenOf(app);
    screen.cleanAllTapped();
    ui::AlertController* asked = app.presenter().alert();
    asked->choose(asked->actions().first());
    ui::AlertController* shown = app.presenter().alert();
    shown->setMessage(app.services().texts("Cleaning Message") +
                      QStringLiteral(" 42%\ncom.apple.mobilesafari"));
    shown->setProgress(0.42);
}

void rowTapped(TestApp& app) {
    fill(app);
    expand(app, 0);
    screenOf(app).cacheCard().didSelectRow(0);
}

void tell(TestApp& app, const char* title, const QString& message) {
    auto alert = std::make_unique<ui::AlertController>(ui::AlertController::Alert,
                                                       app.services().texts(title), message);
    alert->addAction(app.services().texts("OK"));
    app.presenter().present(std::move(alert));
}

}  // namespace

TestApp::MakeScreens home(std::uint64_t total, double used) {
    return [=](const ui::ScreenServices& services) {
        // Never destroyed: the screens outlive this call, and the program ends soon.
        auto* volume = new VolumeFiles(services.files);
        const auto free = static_cast<std::uint64_t>(static_cast<double>(total) * (1 - used / 100));
        volume->volume = platform::FileSystemAttributes{total, free};
        auto* storage = new StorageAnalyzer(services.device, *volume);
        return ui::makeScreens(withStorage(services, *storage));
    };
}

std::vector<Scene> homeScenes() {
    const auto usual = home(128 * kGigabyte, 71.4);
    return {
        {QStringLiteral("home"), usual, fill},
        {QStringLiteral("home-bottom"), usual,
         [](TestApp& app) {
             fill(app);
             scrollTo(app, kBottom);
         }},
        {QStringLiteral("home-green"), home(256 * kGigabyte, 41.2), fill},
        {QStringLiteral("home-red"), home(2048 * kGigabyte, 96.6), fill},
        {QStringLiteral("home-first"), usual, [](TestApp&) {}},
        {QStringLiteral("home-scanning"), usual,
         [](TestApp& app) {
             fill(app);
             screenOf(app).scanButtonTapped();
         }},
        {QStringLiteral("home-open"), usual,
         [](TestApp& app) {
             fill(app);
             expand(app, 0);
             expand(app, 3);
             scrollTo(app, 330);
         }},
        {QStringLiteral("home-open-apps"), usual,
         [](TestApp& app) {
             fill(app);
             expand(app, 4);
             scrollTo(app, kBottom);
         }},
        {QStringLiteral("home-confirm"), usual,
         [](TestApp& app) {
             fill(app);
             screenOf(app).cleanAllTapped();
         }},
        {QStringLiteral("home-confirm-apps"), usual,
         [](TestApp& app) {
             fill(app);
             screenOf(app).cleanAppCacheTapped();
         }},
        {QStringLiteral("home-cleaning"), usual, cleaning},
        {QStringLiteral("home-cleaned"), home(128 * kGigabyte, 58.9),
         [](TestApp& app) {
             fill(app);
             tell(app, "Clean Completed",
                  app.services()
                      .texts("Clean Success Message")
                      .replace(QLatin1String("%@"), QLatin1String("16.2 GB")));
         }},
        {QStringLiteral("home-row"), usual, rowTapped},
        {QStringLiteral("home-extremes"), home(8192 * kGigabyte, 99.96),
         [](TestApp& app) {
             extremes(app);
             scrollTo(app, 300);
         }},
        {QStringLiteral("home-large-text"),
         usual,
         [](TestApp& app) {
             fill(app);
             expand(app, 0);
         },
         26,
         false,
         {},
         1.5},
        {QStringLiteral("home-large-text-bottom"),
         usual,
         [](TestApp& app) {
             extremes(app);
             scrollTo(app, kBottom);
         },
         26,
         false,
         {},
         1.5},
        {QStringLiteral("home-largest-text"),
         usual,
         [](TestApp& app) {
             fill(app);
             scrollTo(app, 260);
         },
         26,
         false,
         {},
         2.0},
    };
}

}  // namespace sweepwright::test
