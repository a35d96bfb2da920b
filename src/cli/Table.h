#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace sweepwright::cli {

class TableLayout;

enum class Align { Left, Right };

/// Who sees a column.
enum class Reader { Everyone, Person, Program };

/// What a column holds, which says how it is made to fit a terminal.
enum class Holds {
    Fixed,       ///< words, sizes and dates: shown whole
    Text,        ///< names and sentences: cut at the end
    Path,        ///< cut in the middle
    OwnedPath,   ///< the same, with the app that it belongs to in a column before it
    Identifier,  ///< what a person may have to copy: without room, on a line of its own below
    Bar,         ///< a Share, drawn as long as there is room
};

struct Column {
    std::string_view title = {};  ///< a person's heading
    Align align = Align::Left;
    Holds holds = Holds::Fixed;
    Reader reader = Reader::Everyone;
    /// Where a terminal is too narrow, the column with the highest goes first; 0: it stays.
    int spare = 0;
};

/// A part of a whole, from 0 to 1, for a Bar.
struct Share {
    double value = 0;
};
using Cell = std::variant<std::string, Share>;

/// What a table is laid out for.
struct Page {
    bool forPerson = false;    ///< with headings, within the width; else all in full
    std::size_t columns = 80;  ///< of a person's terminal
    bool unicode = true;       ///< whether that shows more than ASCII
    /// A cell as it may be shown.
    std::function<std::string(std::string_view)> shown;
    /// The name of the app that a path belongs to; none when it belongs to none.
    std::function<std::optional<std::string>(const std::string& path)> ownerOf;
};

/// Rows of cells in aligned columns, two spaces apart, so that eyes, `awk` and `cut -c` can read
/// them. What may hold anything (a path) belongs into the last column that a program reads, which
/// is never padded. No line ends in a blank that is not in a cell.
class Table {
  public:
    explicit Table(std::vector<Column> columns) : columns_(std::move(columns)) {}

    /// Adds a row; it has as many cells as there are columns.
    void row(std::vector<Cell> cells) { lines_.emplace_back(std::move(cells)); }
    /// Adds a text across all columns, for a person only. Names in it are fit to be shown.
    void remark(std::string text) { lines_.emplace_back(std::move(text)); }
    /// The same, set apart from the rows before it.
    void section(std::string text) {
        remark("");
        remark(std::move(text));
    }
    [[nodiscard]] bool empty() const { return lines_.empty(); }

    [[nodiscard]] std::string text(const Page& page) const;

  private:
    using Row = std::vector<Cell>;
    using Line = std::variant<Row, std::string>;

    /// The cells of a column as they are shown, one a row.
    [[nodiscard]] std::vector<Cell> cellsOf(std::size_t column, const Page& page) const;
    /// The names of those that the paths of a column belong to.
    [[nodiscard]] std::vector<Cell> ownersOf(std::size_t column, const Page& page) const;
    [[nodiscard]] TableLayout layout(const Page& page) const;

    std::vector<Column> columns_;
    std::vector<Line> lines_;
};

}  // namespace sweepwright::cli
