#include "protection/CleanLock.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "platform/base/ThisProcess.h"
#include "platform/device/Device.h"
#include "platform/log/Log.h"

namespace sweepwright {

using platform::Result;

namespace {

constexpr std::size_t kLongestNote = 256;  // bytes

std::string noteOfThisProcess() {
    return fmt::format("{} {}\n", platform::ThisProcess::program(),
                       platform::ThisProcess::number());
}

/// "<program> (process <number>)" of a note; a note that is none names nobody.
std::string holderOf(std::string_view note) {
    const std::size_t space = note.rfind(' ');
    const std::size_t end = note.rfind('\n');
    const bool whole =
        space != std::string_view::npos && end == note.size() - 1 && space > 0 && space + 1 < end;
    if (!whole) return "another process";
    return fmt::format("{} (process {})", note.substr(0, space),
                       note.substr(space + 1, end - space - 1));
}

}  // namespace

CleanLock::CleanLock(platform::FileManager& files, std::string file)
    : files_(files), file_(std::move(file)) {}

CleanLock& CleanLock::sharedLock() {
    static auto* const lock =
        new CleanLock(platform::FileManager::defaultManager(),
                      fileBeside(platform::Device::current().userDefaultsFile()));
    return *lock;
}

std::string CleanLock::fileBeside(const std::string& userDefaultsFile) {
    return userDefaultsFile + ".cleaning";
}

Result<CleanLock::Share> CleanLock::share() {
    const std::scoped_lock lock(mutex_);
    if (shares_ == 0) {
        auto made = files_.createDirectories(file_.substr(0, file_.rfind('/')));
        auto held = made ? files_.tryLock(file_, noteOfThisProcess())
                         : Result<platform::FileLock>(std::unexpected(std::move(made.error())));
        if (held) {
            held_ = std::move(*held);
        } else if (held.error().isLocked()) {
            return std::unexpected(heldByAnother());
        } else {
            platform::log("⚠️ 无法锁定清理: {}", held.error().description);
        }
    }
    ++shares_;
    return Share(*this);
}

void CleanLock::giveBack() {
    const std::scoped_lock lock(mutex_);
    if (--shares_ == 0) held_.reset();
}

platform::Error CleanLock::heldByAnother() const {
    const auto note = files_.readFile(file_, kLongestNote);
    return {kErrorDomain, kHeld,
            fmt::format("{}: {} is cleaning this device; nothing was cleaned, try again later",
                        file_, holderOf(note.value_or("")))};
}

}  // namespace sweepwright
