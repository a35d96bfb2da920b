#include <QThread>
#include <thread>

#include <gtest/gtest.h>

#include "ui/presentation/MainQueueHook.h"
#include "ui/support/TestApp.h"

namespace sweepwright::ui {
namespace {

TEST(MainQueueHook, RunsJobsOfOtherThreadsInTheLoopsThread) {
    platform::MainQueue queue;
    const MainQueueHook hook(queue);
    QThread* ran = nullptr;
    std::thread([&] { queue.async([&] { ran = QThread::currentThread(); }); }).join();
    EXPECT_EQ(ran, nullptr);
    ASSERT_TRUE(test::waitUntil([&] { return ran != nullptr; }));
    EXPECT_EQ(ran, QThread::currentThread());
}

TEST(MainQueueHook, RunsJobsThatWereThereBefore) {
    platform::MainQueue queue;
    bool ran = false;
    queue.async([&] { ran = true; });
    const MainQueueHook hook(queue);
    EXPECT_TRUE(test::waitUntil([&] { return ran; }));
}

}  // namespace
}  // namespace sweepwright::ui
