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

#include "ui/gallery/GalleryScreen.h"
#include "ui/support/TestApp.h"

// Measures the shell with a list of 2,000 rows: time to the first frame, memory, processor time
// while idle, and what a frame takes while the list scrolls under the bar.

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

// The gallery's list in every tab.
ui::SceneDelegate::Screens longLists(const ui::ScreenServices& services) {
    ui::SceneDelegate::Screens screens;
    for (int i = 0; i < 3; ++i) {
        screens.push_back(std::make_unique<test::GalleryScreen>(
            QStringLiteral("Apps"), services.texts, "App List", services.notifications));
    }
    return screens;
}

QQuickItem* listOf(QQuickItem* root) {
    QList<QQuickItem*> waiting{root};
    while (!waiting.isEmpty()) {
        QQuickItem* each = waiting.takeFirst();
        if (each->inherits("QQuickListView") && each->isVisible()) return each;
        waiting += each->childItems();
    }
    return nullptr;
}

// From one frame on screen to the next, `count` times, while the list moves with every frame.
std::vector<double> scrollFrames(test::TestApp& app, int count) {
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
        list->setProperty("contentY", list->property("contentY").toDouble() + 9.0);
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

}  // namespace

int main(int argc, char** argv) {
    QGuiApplication application(argc, argv);
    test::TestApp app({.osVersion = argc > 1 ? std::atoi(argv[1]) : 26}, longLists);
    app.show();
    (void)app.window().grabWindow();
    std::printf("first frame drawn after %.0f ms\n", sinceProcessStart());
    runFor(std::chrono::seconds(1));
    std::printf("resident memory %.0f MB\n", residentMegabytes());
    const std::clock_t before = std::clock();
    constexpr std::chrono::seconds kIdle(3);
    runFor(kIdle);
    const double used = static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
    std::printf("idle: %.1f %% of a processor\n",
                100.0 * used / static_cast<double>(kIdle.count()));
    constexpr int kFrames = 420;
    const std::clock_t start = std::clock();
    std::vector<double> times = scrollFrames(app, kFrames);
    // Says more than the time by the clock when others keep the machine busy.
    const double worked =
        1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC / kFrames;
    std::sort(times.begin(), times.end());
    const double mean =
        std::accumulate(times.begin(), times.end(), 0.0) / static_cast<double>(times.size());
    std::printf("scrolling: mean %.1f ms, 95 %% within %.1f ms a frame\n", mean,
                times[times.size() * 95 / 100]);
    std::printf("processor time, all threads: %.1f ms a frame\n", worked);
    return 0;
}
