// Removals of trees of unusual shape, and of trees that others change meanwhile.
#include <atomic>
#include <cerrno>
#include <climits>
#include <filesystem>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/files/FileManagerFixture.h"
#include "platform/tree/TreeRemover.h"
#include "support/ChildProcess.h"
#include "support/FaultyFileManager.h"

namespace sweepwright::platform {

namespace {

using Names = std::vector<std::string>;

class TreeRemoverStressTest : public FileManagerTest {
  protected:
    TreeRemoverStressTest() {
        for (int i = 0; i < 10; ++i)
            device_.fileWith("/canary/" + std::to_string(i), "alive");
        canary_ = device_.entriesBeneath("/canary");
    }
    Removal remove(const std::string& name, unsigned threads = 2, const WalkRules& rules = {}) {
        const auto root = files_.openDirectory("/", LastLink::Refuse);
        return TreeRemover(files_, threads).remove(*root, name, rules);
    }
    void expectTheCanaryIsAlive() {
        EXPECT_EQ(device_.entriesBeneath("/canary"), canary_);
        EXPECT_EQ(device_.content("/canary/7"), "alive");
    }
    /// Folder "/t" with a chain of `levels` folders; each holds a file and a leaf folder.
    void makeDeepTree(int levels) {
        device_.folder("/t");
        int folder = open(device_.host("/t").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        for (int level = 0; level < levels; ++level) {
            ASSERT_EQ(symlinkat("x", folder, "link"), 0);
            ASSERT_EQ(mkdirat(folder, "leaf", 0755), 0);
            ASSERT_EQ(mkdirat(folder, "d", 0755), 0);
            const int next = openat(folder, "d", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
            close(folder);
            folder = next;
            ASSERT_GE(folder, 0);
        }
        close(folder);
    }

  private:
    Names canary_;
};

/// Runs `body` on a thread with as little stack as a device gives to further threads.
void onSmallStack(const std::function<void()>& body) {
    pthread_attr_t attributes{};
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, std::size_t{512} << 10U), 0);
    pthread_t thread{};
    const auto run = [](void* what) -> void* {
        (*static_cast<const std::function<void()>*>(what))();
        return nullptr;
    };
    auto* argument = const_cast<std::function<void()>*>(&body);
    ASSERT_EQ(pthread_create(&thread, &attributes, run, argument), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

}  // namespace

TEST_P(TreeRemoverStressTest, ATreeOfFiveThousandLevelsGoes) {
    WalkRules rules;
    rules.countLinks = true;
    rules.maxDepth = INT_MAX;
    for (const unsigned threads : {1U, 2U}) {
        const int levels = threads == 1 ? 1000 : 5000;
        makeDeepTree(levels);
        onSmallStack([&] {
            const Removal removal = remove("t", threads, rules);
            EXPECT_FALSE(removal.error.has_value());
            EXPECT_EQ(removal.bytes, static_cast<std::uint64_t>(levels));
        });
        EXPECT_FALSE(device_.exists("/t"));
    }
}

TEST_P(TreeRemoverStressTest, ADeepTreeThatCannotBeRemovedNeedsNoDeepStack) {
    makeDeepTree(2500);
    // Nothing on the way up is opened again then, so the deepest folders are let go of last.
    test::FaultyFileManager files(files_, {test::Operation::RemoveDirectoryAt});
    files.failFrom(1, EACCES);
    onSmallStack([&] {
        const auto root = files_.openDirectory("/", LastLink::Refuse);
        const Removal removal = TreeRemover(files, 2).remove(*root, "t", {});
        ASSERT_TRUE(removal.error.has_value());
        EXPECT_EQ(removal.error->code, EACCES);
    });
    EXPECT_TRUE(device_.exists("/t/d/d/d/leaf"));
    EXPECT_FALSE(remove("t").error.has_value());
}

TEST_P(TreeRemoverStressTest, AFolderFarDownIsSharedAmongThreads) {
    // Wide at the bottom of a chain: what other threads take there holds the whole chain.
    makeDeepTree(1500);
    std::string bottom = "/t";
    for (int i = 0; i < 900; ++i)
        bottom += "/d";
    for (int i = 0; i < 100; ++i)
        device_.folder(bottom + "/wide" + std::to_string(i) + "/leaf");
    EXPECT_FALSE(remove("t", 8).error.has_value());
    EXPECT_FALSE(device_.exists("/t"));
}

TEST_P(TreeRemoverStressTest, ARemovalNeedsFewDescriptors) {
    if (test::ranInFreshProcess()) return;
    for (const unsigned threads : {2U, 8U}) {
        makeDeepTree(300);
        for (int i = 0; i < 40; ++i)
            for (int k = 0; k < 10; ++k)
                device_.file("/t/" + std::to_string(i) + "/" + std::to_string(k) + "/file", 1);
        test::inChildProcess([&] {
            test::limitDescriptors(threads == 2 ? 40 : 128);
            const Removal removal = remove("t", threads);
            EXPECT_FALSE(removal.error.has_value()) << removal.error->description;
            EXPECT_EQ(removal.bytes, 400U);
        });
        EXPECT_FALSE(device_.exists("/t"));
    }
}

TEST_P(TreeRemoverStressTest, BytesOfEveryThreadAreCounted) {
    for (int round = 0; round < 30; ++round) {
        std::uint64_t expected = 0;
        for (int i = 0; i < 30; ++i) {
            std::string path = "/t/" + std::to_string(i);
            for (int k = 0; k < 4; ++k) {
                device_.file(path + "/file", 1);
                path += "/sub";
                ++expected;
            }
        }
        EXPECT_EQ(remove("t", 2 + static_cast<unsigned>(round) % 7).bytes, expected);
    }
}

TEST_P(TreeRemoverStressTest, LinksSwappedInMeanwhileLeadNowhere) {
    constexpr int kRounds = 300;
    constexpr int kFolders = 8;
    // To the host, too, they lead to the canary: nothing but the opening itself keeps out of it.
    const auto target = [&](int i) { return i % 2 == 0 ? device_.host("/canary") : "../canary"; };
    for (int i = 0; i < kFolders; ++i)
        device_.link("/outside/" + std::to_string(i), target(i));
    for (int round = 0; round < kRounds; ++round) {
        for (int i = 0; i < kFolders; ++i)
            for (int k = 0; k < 3; ++k)
                device_.file("/t/" + std::to_string(i) + "/" + std::to_string(k), 1);
        std::atomic<bool> done{false};
        std::atomic<bool> started{false};
        std::thread swapper([&] {
            // Each folder and a link of the same name change places, again and again.
            for (int i = 0; !done; i = (i + 1) % kFolders) {
                const std::string name = "/" + std::to_string(i);
                renameat2(AT_FDCWD, device_.host("/t" + name).c_str(), AT_FDCWD,
                          device_.host("/outside" + name).c_str(), RENAME_EXCHANGE);
                started = true;
            }
        });
        while (!started)
            std::this_thread::yield();
        const Removal removal = remove("t");
        done = true;
        swapper.join();
        expectTheCanaryIsAlive();
        EXPECT_LE(removal.bytes, 3U * kFolders);
        // What was outside at the end stays for the next round as a link again.
        (void)remove("t");
        for (int i = 0; i < kFolders; ++i) {
            const std::string name = "/outside/" + std::to_string(i);
            if (std::filesystem::is_symlink(device_.host(name))) continue;
            std::filesystem::remove_all(device_.host(name));
            device_.link(name, target(i));
        }
    }
    EXPECT_FALSE(device_.exists("/t"));
}

TEST_P(TreeRemoverStressTest, AFolderThatAnotherThreadFillsIsLeftWithAnErrorOrGone) {
    device_.folder("/t/busy");
    std::atomic<bool> done{false};
    std::atomic<std::uint64_t> made{0};
    std::thread filler([&] {
        while (!done) {
            const std::string path =
                device_.host("/t/busy/" + std::to_string(made.load(std::memory_order_relaxed)));
            const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
            if (file >= 0) close(file);
            ++made;
        }
    });
    while (made < 100)
        std::this_thread::yield();
    const Removal removal = remove("t");
    EXPECT_EQ(removal.error.has_value(), device_.exists("/t"));
    done = true;
    filler.join();
    (void)remove("t");
    EXPECT_FALSE(device_.exists("/t"));
    expectTheCanaryIsAlive();
}

FOR_BOTH_CALLS(TreeRemoverStressTest);

}  // namespace sweepwright::platform
