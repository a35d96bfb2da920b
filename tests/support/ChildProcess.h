#pragma once

#include <csignal>
#include <functional>
#include <string>

namespace sweepwright::test {

/// Runs `body` in a child process, for what would change this one: limits, user, mounts. The test
/// fails if an expectation fails there or the child ends by itself. What the caller made is not
/// destroyed in the child: make folders before, so that they are removed by the parent alone.
void inChildProcess(const std::function<void()>& body);

/// The status that a child which runs `body` ends with: 0 if `body` returns and its expectations
/// hold, 1 if one fails, else what it ended by; 128 and the signal's number if a signal did.
int exitStatusOfChild(const std::function<void()>& body);
/// That status of a child that was killed.
inline constexpr int kKilled = 128 + SIGKILL;

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
