#include "cli/Table.h"

#include <algorithm>
#include <cstddef>

#include "platform/TextWidth.h"

namespace sweepwright::cli {

using platform::displayWidth;

std::string Table::text(const std::function<std::string(std::string_view)>& shown) const {
    std::vector<std::vector<std::string>> cells = rows_;
    std::vector<std::size_t> widths(columns_.size(), 0);
    for (auto& row : cells) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            row[i] = shown(row[i]);
            widths[i] = std::max(widths[i], displayWidth(row[i]));
        }
    }
    std::string lines;
    for (const auto& row : cells) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::string padding(widths[i] - displayWidth(row[i]), ' ');
            const bool last = i + 1 == row.size();
            if (i > 0) lines += "  ";
            if (columns_[i] == Align::Right) lines += padding;
            lines += row[i];
            if (columns_[i] == Align::Left && !last) lines += padding;
        }
        lines += '\n';
    }
    return lines;
}

}  // namespace sweepwright::cli
