#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "protection/OrderedStringSet.h"
#include "protection/Snapshot.h"
#include "protection/StoredStrings.h"

namespace sweepwright {

/// A set of strings that is kept in memory and under one key of the user defaults. A change is made
/// to the list as stored, so that what another process added meanwhile stays; memory then holds the
/// outcome. Thread-safe; readers see one state, whatever changes meanwhile.
class StoredStringSet {
  public:
    StoredStringSet(platform::UserDefaults& defaults, std::string key);

    /// Reads the list again. When that fails, memory keeps what it held and readiness() tells why.
    void reload();

    /// Why the set in memory can't be trusted to be the one stored: the error of the last reading.
    [[nodiscard]] platform::Result<> readiness() const;

    /// Members in the order in which they were added.
    [[nodiscard]] std::shared_ptr<const OrderedStringSet> members() const { return members_.get(); }

    /// A change that fails leaves memory as it was.
    platform::Result<> add(const std::string& string);
    platform::Result<> remove(std::string_view string);
    platform::Result<> clear();

  private:
    platform::Result<> update(const std::function<void(OrderedStringSet&)>& change);

    StoredStrings stored_;
    std::mutex changing_;  ///< one reload or change at a time, so that memory ends as stored
    Snapshot<OrderedStringSet> members_;
    Snapshot<platform::Result<>> readiness_;
};

}  // namespace sweepwright
