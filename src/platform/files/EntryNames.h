#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>

#include "platform/files/FileManager.h"

namespace sweepwright::platform {

/// The names of a directory as it was listed once, first in, first out: little more than the bytes
/// of the names, in blocks that are let go of as they are taken.
class EntryNames {
  public:
    void add(std::string_view name) {
        if (blocks_.empty() || blocks_.back().size() + name.size() + 1 > kBlockBytes) {
            blocks_.emplace_back();
            blocks_.back().reserve(kBlockBytes);
        }
        blocks_.back().append(name).push_back('\0');
        ++size_;
    }
    /// Names not yet taken.
    [[nodiscard]] std::size_t size() const { return size_; }
    /// Takes the next name out; not when there is none.
    std::string take() {
        std::string name = blocks_.front().data() + next_;
        next_ += name.size() + 1;
        --size_;
        if (next_ >= blocks_.front().size()) {
            blocks_.pop_front();
            next_ = 0;
        }
        return name;
    }

  private:
    static constexpr std::size_t kBlockBytes = std::size_t{16} << 10U;

    std::deque<std::string> blocks_;
    std::size_t next_ = 0;  ///< where the next name begins in the first block
    std::size_t size_ = 0;
};

/// The names in an open directory from where it was last read.
Result<EntryNames> namesOf(FileManager& files, Directory& directory);
/// The names in the directory at `path`, a link as last component followed.
Result<EntryNames> namesAt(FileManager& files, const std::string& path);

}  // namespace sweepwright::platform
