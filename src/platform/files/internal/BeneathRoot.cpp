#include "platform/files/internal/BeneathRoot.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#ifdef __linux__
#include <linux/openat2.h>
#include <sys/syscall.h>
#endif

namespace sweepwright::platform {

namespace {

#if defined(O_PATH)
constexpr int kSearch = O_PATH | O_DIRECTORY | O_CLOEXEC;
#elif defined(O_SEARCH)
constexpr int kSearch = O_SEARCH | O_DIRECTORY | O_CLOEXEC;
#else
constexpr int kSearch = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
#endif
constexpr int kList = O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK;

/// As many links as the kernel itself follows.
constexpr int kMaxLinks = 40;

using Opened = BeneathRoot::Outcome<UniqueDescriptor>;

Opened openAt(int directory, const std::string& name, int flags) {
    int descriptor = 0;
    do {
        descriptor = openat(directory, name.c_str(), flags);
    } while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0) return std::unexpected(errno);
    return UniqueDescriptor(descriptor);
}

#ifdef __linux__
// A kernel without the call is remembered, so as to ask once.
std::atomic<bool> openat2Missing{false};

Opened openAt2(int directory, const std::string& path, int flags, unsigned long long resolve) {
    open_how how{};
    how.flags = static_cast<unsigned>(flags);
    how.resolve = resolve;
    long descriptor = 0;
    int tries = 0;
    do {
        descriptor = syscall(SYS_openat2, directory, path.c_str(), &how, sizeof how);
    } while (descriptor < 0 && (errno == EINTR || (errno == EAGAIN && ++tries < 64)));
    if (descriptor < 0) {
        const int number = errno;
        if (number == ENOSYS) openat2Missing = true;
        return std::unexpected(number);
    }
    return UniqueDescriptor(static_cast<int>(descriptor));
}
#endif

/// Whether the component-wise road has to find out what openat2 could not. Links can be too many by
/// mistake: a lookup that the kernel begins anew, as when something is mounted elsewhere meanwhile,
/// counts those of the first attempt, too.
bool mustWalk(const Opened& outcome) {
    if (outcome.has_value()) return false;
    const int number = outcome.error();
    return number == ENOSYS || number == EPERM || number == EAGAIN || number == ENAMETOOLONG ||
           number == ELOOP;
}

void splitInto(std::deque<std::string>& front, std::string_view path) {
    std::size_t end = path.size();
    while (end > 0) {
        const std::size_t slash = path.rfind('/', end - 1);
        const std::size_t begin = slash == std::string_view::npos ? 0 : slash + 1;
        if (end > begin) front.emplace_front(path.substr(begin, end - begin));
        if (slash == std::string_view::npos) return;
        end = slash;
    }
}

BeneathRoot::Outcome<std::string> readLinkAt(int directory, const std::string& name) {
    std::array<char, PATH_MAX> target{};
    const ssize_t length = readlinkat(directory, name.c_str(), target.data(), target.size());
    if (length < 0) return std::unexpected(errno);
    return std::string(target.data(), static_cast<std::size_t>(length));
}

std::string_view withoutTrailingSlashes(std::string_view path) {
    while (path.size() > 1 && path.ends_with('/'))
        path.remove_suffix(1);
    return path;
}

/// Whether `inner`, an entry of `outer`, is a mount point. A folder of the same volume that is
/// mounted there is known by its attribute only, which Linux tells since 5.8.
bool crossesMount(int outer, int inner) {
    struct stat a{};
    struct stat b{};
    if (fstat(outer, &a) != 0 || fstat(inner, &b) != 0 || a.st_dev != b.st_dev) return true;
#if defined(__linux__) && defined(STATX_ATTR_MOUNT_ROOT)
    struct statx status{};
    if (statx(inner, "", AT_EMPTY_PATH | AT_NO_AUTOMOUNT, 0, &status) == 0)
        return (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
#endif
    return false;
}

/// Whether `path` can't be handed to the kernel as it is: it would end at a zero byte and name
/// something else. An empty one names nothing.
int unusable(std::string_view path) {
    if (path.empty()) return ENOENT;
    return path.find('\0') == std::string_view::npos ? 0 : EINVAL;
}

}  // namespace

Calls defaultCalls() {
#ifdef __linux__
    static const bool portable = std::getenv("SWEEPWRIGHT_PORTABLE_CALLS") != nullptr;
    return portable ? Calls::Portable : Calls::Native;
#else
    return Calls::Portable;
#endif
}

Opened BeneathRoot::descend(const std::vector<std::string>& components) const {
    Opened current = openAt(root_, ".", kSearch);
    for (const std::string& component : components) {
        if (!current) return current;
        current = openAt(current->get(), component, kSearch | O_NOFOLLOW);
    }
    return current;
}

BeneathRoot::Outcome<BeneathRoot::Entry> BeneathRoot::resolve(std::string_view path,
                                                              LastLink lastLink) const {
    if (const int number = unusable(path); number != 0) return std::unexpected(number);
    std::deque<std::string> pending;
    splitInto(pending, path);
    std::vector<std::string> done;
    Opened current = descend(done);
    int links = 0;
    while (current && !pending.empty()) {
        const std::string component = std::move(pending.front());
        pending.pop_front();
        if (component == ".") continue;
        if (component == "..") {
            if (!done.empty()) done.pop_back();
            current = descend(done);
            continue;
        }
        if (!pending.empty() || lastLink == LastLink::Follow) {
            if (const auto target = readLinkAt(current->get(), component)) {
                if (++links > kMaxLinks) return std::unexpected(ELOOP);
                splitInto(pending, *target);
                if (target->starts_with('/')) {
                    done.clear();
                    current = descend(done);
                }
                continue;
            }
        }
        if (pending.empty()) {
            std::string where;
            for (const std::string& name : done)
                where += "/" + name;
            return Entry{std::move(*current), component, where + "/" + component};
        }
        current = openAt(current->get(), component, kSearch | O_NOFOLLOW);
        done.push_back(component);
    }
    if (!current) return std::unexpected(current.error());
    std::string where;
    for (const std::string& name : done)
        where += "/" + name;
    return Entry{std::move(*current), ".", where.empty() ? "/" : where};
}

BeneathRoot::Outcome<BeneathRoot::Entry> BeneathRoot::locate(std::string_view path,
                                                             LastLink lastLink) const {
    if (const int number = unusable(path); number != 0) return std::unexpected(number);
    path = withoutTrailingSlashes(path);
#ifdef __linux__
    const std::size_t slash = path.rfind('/');
    const std::string_view name = slash == std::string_view::npos ? path : path.substr(slash + 1);
    if (calls_ == Calls::Native && !openat2Missing && !name.empty() && name != "." &&
        name != "..") {
        const std::string above(slash == std::string_view::npos ? "." : path.substr(0, slash + 1));
        Opened parent = openAt2(root_, above, kSearch, RESOLVE_IN_ROOT);
        if (parent) {
            Entry entry{std::move(*parent), std::string(name), {}};
            if (lastLink == LastLink::Refuse || !readLinkAt(entry.parent.get(), entry.name))
                return entry;
        } else if (!mustWalk(parent)) {
            return std::unexpected(parent.error());
        }
    }
#endif
    return resolve(path, lastLink);
}

Opened BeneathRoot::openDirectory(std::string_view path, LastLink lastLink) const {
    if (const int number = unusable(path); number != 0) return std::unexpected(number);
    path = withoutTrailingSlashes(path);
#ifdef __linux__
    if (calls_ == Calls::Native && !openat2Missing) {
        const int noFollow = lastLink == LastLink::Refuse ? O_NOFOLLOW : 0;
        Opened opened = openAt2(root_, std::string(path), kList | noFollow, RESOLVE_IN_ROOT);
        if (!mustWalk(opened)) return opened;
    }
#endif
    const auto entry = resolve(path, lastLink);
    if (!entry) return std::unexpected(entry.error());
    return openAt(entry->parent.get(), entry->name, kList | O_NOFOLLOW);
}

Opened BeneathRoot::openBeneath(int base, std::string_view relative, Mounts mounts) const {
    if (relative.empty()) return openAt(base, ".", kList);
    if (const int number = unusable(relative); number != 0) return std::unexpected(number);
#ifdef __linux__
    if (calls_ == Calls::Native && !openat2Missing && relative.size() < PATH_MAX) {
        const unsigned noMounts = mounts == Mounts::Refuse ? RESOLVE_NO_XDEV : 0U;
        Opened opened = openAt2(base, std::string(relative), kList | O_NOFOLLOW,
                                RESOLVE_NO_SYMLINKS | RESOLVE_BENEATH | noMounts);
        // Here a single link is one too many.
        if (!mustWalk(opened) || opened.error() == ELOOP) return opened;
    }
#endif
    if (relative.starts_with('/')) return std::unexpected(EXDEV);  // as the kernel's own road says
    std::deque<std::string> components;
    splitInto(components, relative);
    Opened current = openAt(base, ".", kSearch);
    while (current && !components.empty()) {
        if (components.front() == "..") return std::unexpected(EXDEV);
        const int flags = components.size() == 1 ? kList : kSearch;
        Opened next = openAt(current->get(), components.front(), flags | O_NOFOLLOW);
        if (next && mounts == Mounts::Refuse && crossesMount(current->get(), next->get()))
            return std::unexpected(EXDEV);
        current = std::move(next);
        components.pop_front();
    }
    return current;
}

}  // namespace sweepwright::platform
