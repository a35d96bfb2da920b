#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/base/Error.h"
#include "platform/device/UserDefaults.h"

namespace sweepwright {

/// A list of strings under one key of the user defaults, which other processes may change, too.
/// Strings are bytes: one that is not UTF-8 is stored as data. Thread-safe.
///
/// A list that can't be read, or of which not every element is a string, is an error here, never an
/// empty list: what it protects would be deleted. It is not written over either.
class StoredStrings {
  public:
    using Strings = std::vector<std::string>;

    /// `defaults` must outlive this.
    StoredStrings(platform::UserDefaults& defaults, std::string key);

    /// The list as stored now; empty when there is none.
    [[nodiscard]] platform::Result<Strings> read() const;

    /// Stores what `change` makes of the list as it is stored at that moment, durably, and returns
    /// it. `change` is called at most once. Errors are logged.
    platform::Result<Strings> update(const std::function<void(Strings&)>& change);

  private:
    [[nodiscard]] platform::Result<Strings> decoded(const platform::PropertyList* stored) const;

    platform::UserDefaults& defaults_;
    std::string key_;
};

}  // namespace sweepwright
