#pragma once

#include <array>
#include <csignal>
#include <functional>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>
#include <unistd.h>

namespace sweepwright::test {

/// Runs `body` in a child process, for what would change this one: limits, user, mounts. The test
/// fails if an expectation fails there or the child ends by itself. What the caller made is not
/// destroyed in the child: make folders before, so that they are removed by the parent alone.
void inChildProcess(const std::function<void()>& body);

/// The status that a child which runs `body` ends with: 0 if `body` returns and its expectations
/// hold, 1 if one fails, else what it ended by; 128 and the signal's number if a signal did.
int exitStatusOfChild(const std::function<void()>& body);
/// The same in two steps, for children that run side by side: starts one; -1 when it can't.
pid_t startChild(const std::function<void()>& body);
/// Waits for it to end, and gives its status as above.
int exitStatusOf(pid_t child);
/// That status of a child that was killed.
inline constexpr int kKilled = 128 + SIGKILL;

/// What `body` answers in a child process, for what must not leave threads in this one: a fork
/// takes none of them along, and what they held stays held.
template <class Answer>
Answer answerOfChild(const std::function<Answer()>& body) {
    static_assert(std::is_trivially_copyable_v<Answer>);
    std::array<int, 2> telling{};
    EXPECT_EQ(pipe(telling.data()), 0);
    inChildProcess([&] {
        const Answer answer = body();
        EXPECT_EQ(write(telling[1], &answer, sizeof answer), ssize_t{sizeof answer});
    });
    close(telling[1]);
    Answer answer{};
    EXPECT_EQ(read(telling[0], &answer, sizeof answer), ssize_t{sizeof answer});
    close(telling[0]);
    return answer;
}

/// Runs the test that begins with this in a fresh process and answers true; there it answers false,
/// and the test goes on. For tests whose child processes start threads: a child that is forked
/// where earlier tests left threads lacks those, and what they held stays held.
///
///     if (test::ranInFreshProcess()) return;
bool ranInFreshProcess();

/// inChildProcess() by a user without rights, where this process may become one.
void asOrdinaryUser(const std::function<void()>& body);
/// Why asOrdinaryUser() can't be had; empty when it can.
std::string whyNoOrdinaryUser();

/// inChildProcess() with a mount table of its own: what is mounted there is seen by no other
/// process and gone when the child ends.
void withOwnMounts(const std::function<void()>& body);
/// Why withOwnMounts() can't be had; empty when it can.
std::string whyNoMounts();

/// Mounts for use inside withOwnMounts(); host paths. Anything wrong ends the child.
void mountMemory(const std::string& folder, const std::string& options = "");
void mountAt(const std::string& source, const std::string& target);
void mountReadOnlyAt(const std::string& source, const std::string& target);

/// Lets this process have at most `count` descriptors open; for a child.
void limitDescriptors(unsigned count);

}  // namespace sweepwright::test
