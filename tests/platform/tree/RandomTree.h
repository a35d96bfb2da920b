#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include <rapidcheck.h>

#include "platform/tree/TreeWalker.h"
#include "support/TemporaryDevice.h"

namespace sweepwright::platform {

/// One step in the making of a tree.
struct TreeStep {
    enum class Kind : std::uint8_t { Folder, DeeperFolder, File, HardLink, Link, Fifo };
    Kind kind = Kind::File;
    unsigned place = 0;  ///< which of the folders so far; DeeperFolder goes into the newest
    unsigned name = 0;   ///< which of the odd names
    unsigned size = 0;   ///< bytes
};

std::ostream& operator<<(std::ostream& out, const TreeStep& step);

/// Steps for a tree with hidden entries, links, empty folders, odd names and deep places.
rc::Gen<std::vector<TreeStep>> treeSteps();

/// Makes the tree of `steps` as folder `top` of `device`; the device paths of its folders, `top`
/// included.
std::vector<std::string> makeTree(test::TemporaryDevice& device, const std::string& top,
                                  const std::vector<TreeStep>& steps);

/// What a walk told: its bytes, and how often each hook was called with each path.
struct Account {
    std::uint64_t bytes = 0;
    std::map<std::string, int> hooks;

    bool operator==(const Account&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Account& account);

/// Protects some paths and all beneath them.
class ListedProtection : public TreeProtection {
  public:
    explicit ListedProtection(std::vector<std::string> paths) : paths_(std::move(paths)) {}
    [[nodiscard]] bool isProtected(const std::string& path) const override;
    [[nodiscard]] bool isFree(const std::string& path) const override;

  private:
    std::vector<std::string> paths_;
};

/// Rules whose hooks write into an account; it must outlive them.
class AccountedRules {
  public:
    /// `rules` without its hooks, which are set here.
    AccountedRules(WalkRules rules, Account& account);
    [[nodiscard]] const WalkRules& rules() const { return rules_; }

  private:
    std::mutex mutex_;
    WalkRules rules_;
};

/// What TreeWalker finds.
Account walked(FileManager& files, unsigned threads, const std::string& path,
               const WalkRules& rules);
/// What a plain recursive walk of the host's folder finds.
Account measuredPlainly(const test::TemporaryDevice& device, const std::string& path,
                        const WalkRules& rules);

}  // namespace sweepwright::platform
