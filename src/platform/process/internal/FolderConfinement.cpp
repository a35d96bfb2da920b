#include "platform/process/internal/FolderConfinement.h"

#include <cerrno>

#ifdef __linux__

#include <cstdint>

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "platform/base/UniqueDescriptor.h"

namespace sweepwright::platform {
namespace {

// The kernel's interface, written out because older C libraries and headers lack parts of it. The
// call numbers are the same on every architecture.
constexpr long kCreateRuleset = 444;
constexpr long kAddRule = 445;
constexpr long kRestrictSelf = 446;
constexpr std::uint32_t kAskVersion = 1U << 0U;
constexpr int kRulePathBeneath = 1;

constexpr std::uint64_t kWriteFile = 1U << 1U;
constexpr std::uint64_t kRemoveDirectory = 1U << 4U;
constexpr std::uint64_t kRemoveFile = 1U << 5U;
constexpr std::uint64_t kMakeAnything = 0x7FU << 6U;  ///< seven kinds of file, bits 6 to 12
constexpr std::uint64_t kMoveBetweenFolders = 1U << 13U;
constexpr std::uint64_t kTruncate = 1U << 14U;

constexpr long kVersionWithMoving = 2;
constexpr long kVersionWithTruncation = 3;

struct RulesetAttributes {
    std::uint64_t handledFileAccess;
};

struct [[gnu::packed]] PathBeneath {
    std::uint64_t allowedAccess;
    std::int32_t descriptor;
};

/// The version of the interface, below 1 when there is none.
long version() {
    return syscall(kCreateRuleset, nullptr, 0UL, kAskVersion);
}

/// Everything that changes files, as far as this kernel can refuse it. A kernel that can't yet
/// allow moving between folders refuses it always.
std::uint64_t changes() {
    std::uint64_t rights = kWriteFile | kRemoveDirectory | kRemoveFile | kMakeAnything;
    const long offered = version();
    if (offered >= kVersionWithMoving) rights |= kMoveBetweenFolders;
    if (offered >= kVersionWithTruncation) rights |= kTruncate;
    return rights;
}

int allow(const UniqueDescriptor& ruleset, const UniqueDescriptor& place, std::uint64_t rights) {
    const PathBeneath rule{rights, place.get()};
    const long added = syscall(kAddRule, ruleset.get(), kRulePathBeneath, &rule, 0U);
    return added == 0 ? 0 : errno;
}

int openFolder(const std::string& path) {
    open_how how{};
    how.flags = O_PATH | O_DIRECTORY | O_CLOEXEC;
    how.resolve = RESOLVE_NO_SYMLINKS;
    return static_cast<int>(syscall(SYS_openat2, AT_FDCWD, path.c_str(), &how, sizeof(how)));
}

}  // namespace

bool FolderConfinement::available() {
    return version() >= 1;
}

int FolderConfinement::restrictThisThread(const std::string& writableFolder) {
    const RulesetAttributes attributes{changes()};
    const UniqueDescriptor ruleset(
        static_cast<int>(syscall(kCreateRuleset, &attributes, sizeof(attributes), 0U)));
    if (!ruleset.valid()) return errno;
    const UniqueDescriptor folder(openFolder(writableFolder));
    if (folder.valid()) {
        if (const int failed = allow(ruleset, folder, attributes.handledFileAccess)) return failed;
    }
    const UniqueDescriptor sink(open("/dev/null", O_PATH | O_CLOEXEC));
    if (sink.valid()) {
        if (const int failed = allow(ruleset, sink, kWriteFile)) return failed;
    }
    if (prctl(PR_SET_NO_NEW_PRIVS, 1UL, 0UL, 0UL, 0UL) != 0) return errno;
    return syscall(kRestrictSelf, ruleset.get(), 0U) == 0 ? 0 : errno;
}

}  // namespace sweepwright::platform

#else

namespace sweepwright::platform {

bool FolderConfinement::available() {
    return false;
}

int FolderConfinement::restrictThisThread(const std::string& /*writableFolder*/) {
    return ENOSYS;
}

}  // namespace sweepwright::platform

#endif
