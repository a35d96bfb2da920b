#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/Error.h"

namespace sweepwright::platform {

/// A table of texts by key, as a ".strings" file of the program's own resources holds it:
/// `"key" = "text";` with comments and escapes, in UTF-8, with or without a byte-order mark.
class StringsTable {
  public:
    /// Something in the file that is not as it should be.
    struct Problem {
        std::size_t line = 0;  ///< from 1
        std::string_view why;  ///< lives as long as the program
        bool operator==(const Problem&) const = default;
    };

    /// A longer file is refused unread.
    static constexpr std::size_t kMaxBytes = std::size_t{1} << 20U;

    /// After so many problems the rest of a file is not read: it is no string table, and each
    /// problem may cost another look at all that follows.
    static constexpr std::size_t kMaxProblems = 256;

    /// An empty table.
    StringsTable() = default;

    /// Reads a table. A broken entry costs the line it begins on, not the table: reading goes on
    /// with the next line, and problems() tells of it. Of a key that stands twice the later text
    /// holds, which is a problem, too. An error of kFormatErrorDomain is given only for a file that
    /// is too long.
    static Result<StringsTable> parse(std::string_view bytes);

    /// The text under `key`, or nullptr.
    [[nodiscard]] const std::string* find(std::string_view key) const;
    [[nodiscard]] const std::map<std::string, std::string, std::less<>>& entries() const {
        return entries_;
    }
    /// What was wrong, in the order of the file.
    [[nodiscard]] const std::vector<Problem>& problems() const { return problems_; }

  private:
    std::map<std::string, std::string, std::less<>> entries_;
    std::vector<Problem> problems_;
};

}  // namespace sweepwright::platform
