#include "support/ChildProcess.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

#include <grp.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace sweepwright::test {

namespace {

constexpr int kSetUpFailed = 99;
constexpr unsigned kNobody = 65534;

/// Ends the child: going on where a mount or a right is not as meant could harm the host.
void require(bool done, const char* what) {
    if (done) return;
    std::fprintf(stderr, "%s: %s\n", what, std::strerror(errno));
    _exit(kSetUpFailed);
}

void takeOwnMounts() {
    require(unshare(CLONE_NEWNS) == 0, "unshare");
    require(mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "private mounts");
}

}  // namespace

pid_t startChild(const std::function<void()>& body) {
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child != 0) return child;
    try {
        body();
    } catch (const std::exception& error) {
        ADD_FAILURE() << error.what();
    }
    std::fflush(nullptr);
    _exit(::testing::Test::HasFailure() ? 1 : 0);
}

int exitStatusOf(pid_t child) {
    if (child < 0) return -1;
    int status = 0;
    while (waitpid(child, &status, 0) < 0)
        if (errno != EINTR) return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

int exitStatusOfChild(const std::function<void()>& body) {
    return exitStatusOf(startChild(body));
}

void inChildProcess(const std::function<void()>& body) {
    EXPECT_EQ(exitStatusOfChild(body), 0) << "see above for what the child process found";
}

bool ranInFreshProcess() {
    static constexpr const char* kTelling = "SWEEPWRIGHT_TEST_TELLING";
    if (const char* telling = std::getenv(kTelling)) {
        EXPECT_EQ(write(std::atoi(telling), "", 1), 1);
        unsetenv(kTelling);
        return false;
    }
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    const std::string filter =
        std::string("--gtest_filter=") + test->test_suite_name() + "." + test->name();
    std::array<int, 2> telling{};
    EXPECT_EQ(pipe(telling.data()), 0);
    inChildProcess([&] {
        setenv(kTelling, std::to_string(telling[1]).c_str(), 1);
        for (const char* name : {"GTEST_TOTAL_SHARDS", "GTEST_SHARD_INDEX", "GTEST_OUTPUT"})
            unsetenv(name);
        execl("/proc/self/exe", "test", filter.c_str(), "--gtest_brief=1", nullptr);
        require(false, "run the test again");
    });
    close(telling[1]);
    char byte = 0;
    EXPECT_EQ(read(telling[0], &byte, 1), 1) << "the fresh process did not run the test";
    close(telling[0]);
    return true;
}

void asOrdinaryUser(const std::function<void()>& body) {
    inChildProcess([&] {
        if (geteuid() == 0) {
            require(setgroups(0, nullptr) == 0, "setgroups");
            require(setgid(kNobody) == 0, "setgid");
            require(setuid(kNobody) == 0, "setuid");
        }
        body();
    });
}

std::string whyNoOrdinaryUser() {
    const int status = exitStatusOfChild([] {
        if (geteuid() == 0 && (setgroups(0, nullptr) != 0 || setuid(kNobody) != 0)) _exit(1);
        _exit(0);
    });
    return status == 0 ? "" : "this process may not become an ordinary user";
}

void withOwnMounts(const std::function<void()>& body) {
    inChildProcess([&] {
        takeOwnMounts();
        body();
    });
}

std::string whyNoMounts() {
    const int status = exitStatusOfChild([] {
        const bool own = unshare(CLONE_NEWNS) == 0 &&
                         mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
        _exit(own ? 0 : 1);
    });
    return status == 0 ? "" : "this process may not mount";
}

void mountMemory(const std::string& folder, const std::string& options) {
    require(mount("tmpfs", folder.c_str(), "tmpfs", 0, options.c_str()) == 0, "mount tmpfs");
}

void mountAt(const std::string& source, const std::string& target) {
    require(mount(source.c_str(), target.c_str(), nullptr, MS_BIND, nullptr) == 0, "bind mount");
}

void mountReadOnlyAt(const std::string& source, const std::string& target) {
    mountAt(source, target);
    require(mount(nullptr, target.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) == 0,
            "remount read-only");
}

void limitDescriptors(unsigned count) {
    const rlimit limit{count, count};
    require(setrlimit(RLIMIT_NOFILE, &limit) == 0, "setrlimit");
}

}  // namespace sweepwright::test
