#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace sweepwright::cli {

enum class Align { Left, Right };

/// Rows of cells in aligned columns, two spaces apart, so that eyes, `awk` and `cut -c` can read
/// them. What may hold anything (a path) belongs into the last column, which is never padded.
class Table {
  public:
    explicit Table(std::vector<Align> columns) : columns_(std::move(columns)) {}

    /// Adds a row; it has as many cells as there are columns.
    void row(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }
    [[nodiscard]] bool empty() const { return rows_.empty(); }

    /// The lines, each cell as `shown` makes it.
    [[nodiscard]] std::string text(const std::function<std::string(std::string_view)>& shown) const;

  private:
    std::vector<Align> columns_;
    std::vector<std::vector<std::string>> rows_;
};

}  // namespace sweepwright::cli
