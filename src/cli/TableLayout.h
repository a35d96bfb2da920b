#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/Table.h"
#include "cli/Text.h"

namespace sweepwright::cli {

/// The columns of one table on one page: which there are, how wide each is, and the lines they
/// make.
class TableLayout {
  public:
    explicit TableLayout(const Page& page) : page_(page), drawing_(page.unicode) {}

    /// Adds a column with its cells, one a row.
    void add(const Column& column, std::vector<Cell> cells);
    /// Finds the widths. After the last column, before the first line.
    void fit();

    [[nodiscard]] std::string headings() const;
    [[nodiscard]] std::string row(std::size_t index) const;

  private:
    struct Placed {
        Column column;
        std::string title;  ///< in the language of this run
        std::vector<Cell> cells;
        std::size_t width = 0;
        std::size_t least = 0;  ///< columns that it can't do without
        bool below = false;     ///< on a line of its own
    };

    [[nodiscard]] std::size_t total(std::size_t Placed::* width) const;
    /// Leaves out, or puts below, what there is no room for. False when nothing more can go.
    bool makeRoom();
    void narrow();
    [[nodiscard]] std::string cellText(const Placed& placed, std::size_t index) const;
    [[nodiscard]] std::string cut(const std::string& text, Holds holds, std::size_t width) const;
    template <class TextOf>
    [[nodiscard]] std::string line(TextOf textOf) const;

    const Page& page_;
    Drawing drawing_;
    std::vector<Placed> placed_;
};

}  // namespace sweepwright::cli
