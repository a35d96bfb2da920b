#include <QEventLoop>
#include <QGuiApplication>
#include <QQuickItem>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <numeric>
#include <string>
#include <vector>

#include <unistd.h>

#include "ui/apps/AppListViewController.h"
#include "ui/support/InstalledApps.h"
#include "ui/support/TestApp.h"

// Measures the Apps tab with 2,000 apps, each with an icon of its own: time to the first frame,
// memory, processor time while idle, what a frame takes while the list scrolls under the bar,
// slowly and in a fling, and how long the screen is busy with a search and with a new scan.

namespace {

using namespace sweepwright;
using Clock = std::chrono::steady_clock;

double milliseconds(Clock::duration span) {
    return std::chrono::duration<double, std::milli>(span).count();
}

// Since the process began, by the kernel's account of it.
double sinceProcessStart() {
    std::ifstream stat("/proc/self/stat");
    std::string text((std::istreambuf_iterator<char>(stat)), {});
    text = text.substr(text.rfind(')') + 2);
    constexpr int kStartField = 19;  // counted from behind the name
    std::size_t at = 0;
    for (int i = 0; i < kStartField; ++i)
        at = text.find(' ', at) + 1;
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    const double start = std::stod(text.substr(at)) / static_cast<double>(sysconf(_SC_CLK_TCK));
    return (static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9 - start) *
           1000.0;
}

double residentMegabytes() {
    std::ifstream statm("/proc/self/statm");
    double total = 0.0;
    double resident = 0.0;
    statm >> total >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1048576.0;
}

void runFor(std::chrono::milliseconds span) {
    QEventLoop loop;
    QTimer::singleShot(span, &loop, &QEventLoop::quit);
    loop.exec();
}

QQuickItem* listOf(QQuickItem* root) {
    return test::firstItem(root, [](const QQuickItem* each) {
        return each->inherits("QQuickListView") && each->isVisible();
    });
}

// From one frame on screen to the next, `count` times, while the list moves by `step` points with
// every frame.
std::vector<double> scrollFrames(test::TestApp& app, int count, double step) {
    QQuickView& view = app.window();
    QQuickItem* list = listOf(view.contentItem());
    std::vector<double> times;
    QEventLoop loop;
    auto last = Clock::now();
    const auto connection = QObject::connect(&view, &QQuickWindow::frameSwapped, &view, [&] {
        const auto now = Clock::now();
        times.push_back(milliseconds(now - last));
        last = now;
        if (static_cast<int>(times.size()) >= count) return loop.quit();
        list->setProperty("contentY", list->property("contentY").toDouble() + step);
        app.scene().showTabBar();
        view.update();
    });
    view.update();
    loop.exec();
    QObject::disconnect(connection);
    constexpr int kWarmUp = 20;
    times.erase(times.begin(), times.begin() + kWarmUp);
    return times;
}

ui::AppListViewController& appList(test::TestApp& app) {
    return *qobject_cast<ui::AppListViewController*>(app.scene().tabBarController()->at(1).root());
}

void finishLoading(test::TestApp& app) {
    app.mainQueue.runUntil([&] { return !appList(app).loading(); });
}

void reportScrolling(test::TestApp& app, const char* name, double step) {
    constexpr int kFrames = 420;
    QMetaObject::invokeMethod(listOf(app.window().contentItem()), "toTop");
    const std::clock_t start = std::clock();
    std::vector<double> times = scrollFrames(app, kFrames, step);
    // Says more than the time by the clock when others keep the machine busy.
    const double worked =
        1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC / kFrames;
    std::sort(times.begin(), times.end());
    const double mean =
        std::accumulate(times.begin(), times.end(), 0.0) / static_cast<double>(times.size());
    std::printf(
        "%s: mean %.1f ms, 95 %% within %.1f ms a frame; processor time, all threads: "
        "%.1f ms a frame\n",
        name, mean, times[times.size() * 95 / 100], worked);
}

// How long `work` keeps the main thread, and then how long the frame after it takes.
void reportWork(test::TestApp& app, const char* name, const std::function<void()>& work) {
    const auto start = Clock::now();
    work();
    const auto worked = Clock::now();
    (void)app.window().grabWindow();
    std::printf("%s: %.1f ms, and %.1f ms for the frame after it\n", name,
                milliseconds(worked - start), milliseconds(Clock::now() - worked));
}

// The last job that a scan posts is the one that shows its result.
void reportScan(test::TestApp& app) {
    appList(app).loadApps();
    Clock::duration longest{};
    while (appList(app).loading()) {
        const auto start = Clock::now();
        app.mainQueue.drain();
        longest = std::max(longest, Clock::now() - start);
    }
    std::printf("showing a scan that changed nothing: %.1f ms\n", milliseconds(longest));
}

// Once what still moves has come to rest.
void reportIdle() {
    runFor(std::chrono::seconds(1));
    const std::clock_t before = std::clock();
    constexpr std::chrono::seconds kIdle(3);
    runFor(kIdle);
    const double used = static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
    std::printf("idle: %.1f %% of a processor\n",
                100.0 * used / static_cast<double>(kIdle.count()));
}

}  // namespace

int main(int argc, char** argv) {
    QGuiApplication application(argc, argv);
    test::TestApp app({.osVersion = argc > 1 ? std::atoi(argv[1]) : 26});
    app.show();
    (void)app.window().grabWindow();
    std::printf("first frame drawn after %.0f ms\n", sinceProcessStart());
    reportIdle();
    std::printf("resident memory %.0f MB\n", residentMegabytes());

    constexpr int kApps = 2000;
    for (const test::InstalledApp& each : test::manyApps(kApps, true))
        test::install(app.device, each);
    app.scene().tabBarController()->setSelectedIndex(1);
    finishLoading(app);
    (void)app.window().grabWindow();
    std::printf("%d apps listed, resident memory %.0f MB\n", kApps, residentMegabytes());
    reportScrolling(app, "scrolling", 9.0);
    reportScrolling(app, "flinging", 75.0);
    std::printf("resident memory %.0f MB\n", residentMegabytes());
    reportIdle();

    ui::AppListViewController& list = appList(app);
    const auto search = [&](const char* text) {
        list.filterAppsWithSearchText(QString::fromLatin1(text));
    };
    reportWork(app, "first letter of a search", [&] { search("o"); });
    reportWork(app, "third letter of a search", [&] { search("ope"); });
    reportWork(app, "search cancelled", [&] { search(""); });
    reportWork(app, "other segment", [&] { list.setSelectedSegment(1); });
    reportWork(app, "back again", [&] { list.setSelectedSegment(0); });
    reportScan(app);
    return 0;
}
