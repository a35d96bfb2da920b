#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/files/FileManager.h"
#include "platform/plist/PropertyList.h"

namespace sweepwright::platform {

/// The user defaults: one binary property list that several processes may read and change at once.
///
/// Every reading sees the file as it stands now. A change takes the lock, reads the file again,
/// applies, and replaces the file durably, so that two processes lose nothing and a crash leaves
/// the old or the new file. The lock is "<file>.lock" beside it, which stays. Thread-safe.
///
/// A damaged file is never replaced in silence: readings answer "absent" and damage() says why; the
/// first change sets it aside as "<name>.damaged-<yyyyMMdd-HHmmss>[-n]" beside it, logs that, and
/// starts a new file. Until a person has removed or restored the file set aside, damage() goes on
/// telling of it. A file that can't be read at all is left alone: readings answer "absent",
/// damage() says why, and a change fails.
class UserDefaults {
  public:
    using Change = std::function<std::optional<PropertyList>(const PropertyList* stored)>;

    /// Works on the file at device path `file`; neither it nor its directory need exist. `files`
    /// must outlive this.
    UserDefaults(FileManager& files, std::string file);

    /// The defaults of Device::current(), made on first use.
    static UserDefaults& standard();

    /// The value under `key`, none when absent or unreadable.
    [[nodiscard]] std::optional<PropertyList> object(std::string_view key) const;
    /// As object(), telling absent (an empty optional) from unreadable (an error).
    [[nodiscard]] Result<std::optional<PropertyList>> read(std::string_view key) const;

    /// Typed readings: absent or of another type reads as none, 0 or false. A string that is not
    /// UTF-8 is stored as data, so that string() answers the bytes of data, too.
    [[nodiscard]] std::optional<std::string> string(std::string_view key) const;
    [[nodiscard]] std::int64_t integer(std::string_view key) const;
    [[nodiscard]] std::uint64_t unsignedInteger(std::string_view key) const;
    [[nodiscard]] bool boolean(std::string_view key) const;

    /// Stores or removes one key, durably when it returns.
    Result<> set(std::string_view key, PropertyList value);
    Result<> remove(std::string_view key);

    /// Changes one key under the lock: `change` gets what is stored now (nullptr when absent) and
    /// answers what to store, or none to remove the key. Nothing is written when nothing changes.
    /// `change` is called once, and not if the file can't be read; it must not change user defaults
    /// itself, for the lock is held. Keys are UTF-8 without a NUL.
    Result<> update(std::string_view key, const Change& change);

    /// Changes several keys in one replacement: `change` gets the whole dictionary.
    Result<> updateAll(const std::function<void(PropertyList::Dictionary&)>& change);

    /// Why what is stored can't be trusted to be complete: the file is damaged, or one that was
    /// damaged lies set aside. None when all is well. What protects must refuse while this tells.
    [[nodiscard]] std::optional<Error> damage() const;

    [[nodiscard]] const std::string& file() const { return file_; }

  private:
    Result<std::optional<std::string>> storedBytes() const;
    Result<PropertyList::Dictionary> load() const;
    Result<> setAside() const;
    FileManager& files_;
    std::string file_;
};

}  // namespace sweepwright::platform
