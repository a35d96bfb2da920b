#include "platform/tree/RandomTree.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <ostream>

#include <sys/stat.h>

namespace sweepwright::platform {

namespace fs = std::filesystem;

namespace {

const std::array<std::string, 12> kNames = {"a",
                                            "b",
                                            ".hidden",
                                            "..x",
                                            "sp ace",
                                            "quote'\"",
                                            "new\nline",
                                            "\xff\xfe",
                                            "-rf",
                                            "a.db",
                                            std::string(200, 'n'),
                                            "名"};
const std::array<std::string, 8> kTargets = {".",         "..",   "/",       "/canary",
                                             "../canary", "/etc", "nowhere", "a"};

bool liesIn(const std::string& path, const std::string& folder) {
    return path == folder || (path.starts_with(folder) && path[folder.size()] == '/');
}

std::uint64_t measure(const std::string& hostRoot, const std::string& path, int depth,
                      const WalkRules& rules) {
    if (depth <= 0) {
        rules.onDepthLimit(path);
        return 0;
    }
    std::uint64_t sum = 0;
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(hostRoot + path, none)) {
        const std::string name = entry.path().filename().string();
        const std::string child = joinPath(path, name);
        struct stat status{};
        if (name.starts_with('.') && !rules.countHiddenEntries) continue;
        if (rules.protection != nullptr && rules.protection->isProtected(child)) {
            rules.onProtectedEntry(child);
        } else if (lstat(entry.path().c_str(), &status) != 0) {
            continue;
        } else if (S_ISDIR(status.st_mode)) {
            sum += measure(hostRoot, child, depth - 1, rules);
        } else if (!S_ISLNK(status.st_mode) || rules.countLinks) {
            sum += static_cast<std::uint64_t>(status.st_size);
        }
    }
    return sum;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const TreeStep& step) {
    return out << "{kind " << static_cast<int>(step.kind) << ", place " << step.place << ", name "
               << step.name << ", size " << step.size << "}";
}

rc::Gen<std::vector<TreeStep>> treeSteps() {
    using Kind = TreeStep::Kind;
    const auto kind = rc::gen::weightedElement<Kind>({{6, Kind::Folder},
                                                      {2, Kind::DeeperFolder},
                                                      {8, Kind::File},
                                                      {1, Kind::HardLink},
                                                      {2, Kind::Link},
                                                      {1, Kind::Fifo}});
    const auto step =
        rc::gen::build<TreeStep>(rc::gen::set(&TreeStep::kind, kind),
                                 rc::gen::set(&TreeStep::place, rc::gen::inRange(0U, 10'000U)),
                                 rc::gen::set(&TreeStep::name, rc::gen::inRange(0U, 10'000U)),
                                 rc::gen::set(&TreeStep::size, rc::gen::inRange(0U, 100'000U)));
    // Three times the usual length: further threads start in trees of more than 16 folders only.
    return rc::gen::withSize([step](int size) {
        return rc::gen::resize(
            3 * size, rc::gen::container<std::vector<TreeStep>>(rc::gen::resize(size, step)));
    });
}

std::vector<std::string> makeTree(test::TemporaryDevice& device, const std::string& top,
                                  const std::vector<TreeStep>& steps) {
    using Kind = TreeStep::Kind;
    device.folder(top);
    std::vector<std::string> folders{top};
    std::string lastFile;
    unsigned count = 0;
    for (const TreeStep& step : steps) {
        const std::string& folder =
            step.kind == Kind::DeeperFolder ? folders.back() : folders[step.place % folders.size()];
        const std::string path =
            folder + "/" + kNames[step.name % kNames.size()] + std::to_string(++count);
        // Beyond this the host's own calls, which make the tree, do not reach.
        if (path.size() > 2000) continue;
        switch (step.kind) {
            case Kind::Folder:
            case Kind::DeeperFolder:
                device.folder(path);
                folders.push_back(path);
                break;
            case Kind::File:
                device.file(path, step.size);
                lastFile = path;
                break;
            case Kind::HardLink:
                if (!lastFile.empty()) device.hardLink(path, lastFile);
                break;
            case Kind::Link:
                device.link(path, kTargets[step.size % kTargets.size()]);
                break;
            case Kind::Fifo:
                device.fifo(path);
                break;
        }
    }
    return folders;
}

std::ostream& operator<<(std::ostream& out, const Account& account) {
    out << account.bytes << " bytes";
    for (const auto& [call, times] : account.hooks)
        out << "\n  " << call << " × " << times;
    return out;
}

bool ListedProtection::isProtected(const std::string& path) const {
    return std::ranges::any_of(paths_, [&](const auto& listed) { return liesIn(path, listed); });
}

bool ListedProtection::isFree(const std::string& path) const {
    return std::ranges::none_of(
        paths_, [&](const auto& listed) { return liesIn(path, listed) || liesIn(listed, path); });
}

AccountedRules::AccountedRules(WalkRules rules, Account& account) : rules_(std::move(rules)) {
    const auto noting = [this, &account](std::string what) {
        return [this, &account, what = std::move(what)](const std::string& path) {
            const std::lock_guard lock(mutex_);
            ++account.hooks[what + path];
        };
    };
    rules_.onProtectedRoot = noting("root ");
    rules_.onProtectedEntry = noting("entry ");
    rules_.onDepthLimit = noting("depth ");
}

Account walked(FileManager& files, unsigned threads, const std::string& path,
               const WalkRules& rules) {
    Account account;
    const AccountedRules accounted(rules, account);
    account.bytes = TreeWalker(files, threads).sizeOfDirectory(path, accounted.rules());
    return account;
}

Account measuredPlainly(const test::TemporaryDevice& device, const std::string& path,
                        const WalkRules& rules) {
    Account account;
    const AccountedRules accounted(rules, account);
    if (rules.protection != nullptr && rules.protection->isProtected(path))
        accounted.rules().onProtectedRoot(path);
    else
        account.bytes = measure(device.root(), path, rules.maxDepth, accounted.rules());
    return account;
}

}  // namespace sweepwright::platform
