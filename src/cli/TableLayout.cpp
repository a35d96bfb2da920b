#include "cli/TableLayout.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "cli/Translation.h"
#include "platform/text/TextWidth.h"

namespace sweepwright::cli {

using platform::displayWidth;

namespace {

constexpr std::size_t kGap = 2;       // between two columns, and before what stands below a row
constexpr std::size_t kLongest = 24;  // of a bar

/// Columns without which a cell says nothing.
std::size_t leastOf(Holds holds) {
    switch (holds) {
        case Holds::Text:
            return 8;
        case Holds::Path:
        case Holds::OwnedPath:
            return 14;
        case Holds::Bar:
            return 4;
        case Holds::Fixed:
        case Holds::Identifier:
            break;
    }
    return std::string::npos;
}

}  // namespace

void TableLayout::add(const Column& column, std::vector<Cell> cells) {
    Placed placed{.column = column, .title = translated(column.title), .cells = std::move(cells)};
    if (page_.forPerson) placed.width = displayWidth(placed.title);
    for (const Cell& cell : placed.cells) {
        const auto* text = std::get_if<std::string>(&cell);
        placed.width = std::max(placed.width, text != nullptr ? displayWidth(*text) : kLongest);
    }
    placed.least = std::min(placed.width, leastOf(column.holds));
    placed_.push_back(std::move(placed));
}

void TableLayout::fit() {
    if (!page_.forPerson) return;
    while (total(&Placed::least) > page_.columns && makeRoom()) {
    }
    narrow();
}

std::size_t TableLayout::total(std::size_t Placed::* width) const {
    std::size_t sum = 0;
    for (const Placed& placed : placed_) {
        if (!placed.below) sum += (sum > 0 ? kGap : 0) + placed.*width;
    }
    return sum;
}

bool TableLayout::makeRoom() {
    const auto spare = std::ranges::max_element(
        placed_, {}, [](const Placed& placed) { return placed.column.spare; });
    if (spare != placed_.end() && spare->column.spare > 0) {
        placed_.erase(spare);
        return true;
    }
    const auto identifier = std::ranges::find_if(placed_, [](const Placed& placed) {
        return placed.column.holds == Holds::Identifier && !placed.below;
    });
    if (identifier == placed_.end() || placed_.size() == 1) return false;
    identifier->below = true;
    return true;
}

/// Takes from the widest column that can be cut, one by one, so that those beside it keep theirs; a
/// path may be twice as wide as a name. On a terminal that is too narrow even so, goes below what
/// is sensible.
void TableLayout::narrow() {
    for (const bool sensible : {true, false}) {
        while (total(&Placed::width) > page_.columns) {
            const auto room = [sensible](const Placed& placed) {
                const std::size_t least = sensible ? placed.least : 1;
                const std::size_t weight = placed.column.holds == Holds::Text ? 2 : 1;
                return !placed.below && placed.width > least ? placed.width * weight : 0;
            };
            const auto widest = std::ranges::max_element(placed_, {}, room);
            if (widest == placed_.end() || room(*widest) == 0) break;
            --widest->width;
        }
    }
    for (Placed& placed : placed_) {
        if (placed.below && page_.columns > kGap)
            placed.width = std::min(placed.width, page_.columns - kGap);
    }
}

std::string TableLayout::headings() const {
    return line([](const Placed& placed) { return placed.title; });
}

std::string TableLayout::row(std::size_t index) const {
    return line([this, index](const Placed& placed) { return cellText(placed, index); });
}

std::string TableLayout::cellText(const Placed& placed, std::size_t index) const {
    const Cell& cell = placed.cells[index];
    if (const auto* text = std::get_if<std::string>(&cell)) return *text;
    const double pieces = std::get<Share>(cell).value * static_cast<double>(placed.width);
    return repeated(drawing_.bar, static_cast<std::size_t>(std::lround(pieces)));
}

std::string TableLayout::cut(const std::string& text, Holds holds, std::size_t width) const {
    if (!page_.forPerson) return text;
    const bool inMiddle =
        holds == Holds::Path || holds == Holds::OwnedPath || holds == Holds::Identifier;
    return inMiddle ? cutInMiddle(text, width, drawing_.ellipsis)
                    : cutAtEnd(text, width, drawing_.ellipsis);
}

template <class TextOf>
std::string TableLayout::line(TextOf textOf) const {
    std::string line;
    std::string below;
    std::size_t blanks = 0;  // before what comes next; none are put behind the last
    bool first = true;
    for (const Placed& placed : placed_) {
        const std::string text = cut(textOf(placed), placed.column.holds, placed.width);
        if (placed.below) {
            if (!text.empty()) below += std::string(kGap, ' ') + text + '\n';
            continue;
        }
        if (!std::exchange(first, false)) blanks += kGap;
        const std::size_t padding = placed.width - displayWidth(text);
        if (placed.column.align == Align::Right) blanks += padding;
        if (!text.empty()) line += std::string(std::exchange(blanks, 0), ' ') + text;
        if (placed.column.align == Align::Left) blanks += padding;
    }
    return line + '\n' + below;
}

}  // namespace sweepwright::cli
