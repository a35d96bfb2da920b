#include "cli/Table.h"

#include <algorithm>

#include "cli/TableLayout.h"
#include "cli/Text.h"
#include "cli/Wording.h"

namespace sweepwright::cli {

namespace {

bool isEmpty(const Cell& cell) {
    const auto* text = std::get_if<std::string>(&cell);
    return text != nullptr && text->empty();
}

}  // namespace

std::vector<Cell> Table::cellsOf(std::size_t column, const Page& page) const {
    std::vector<Cell> cells;
    for (const Line& line : lines_) {
        const Row* row = std::get_if<Row>(&line);
        if (row == nullptr) continue;
        cells.push_back((*row)[column]);
        if (auto* text = std::get_if<std::string>(&cells.back())) *text = page.shown(*text);
    }
    return cells;
}

std::vector<Cell> Table::ownersOf(std::size_t column, const Page& page) const {
    std::vector<Cell> owners;
    for (const Line& line : lines_) {
        const Row* row = std::get_if<Row>(&line);
        if (row == nullptr) continue;
        const auto owner = page.ownerOf(std::get<std::string>((*row)[column]));
        owners.emplace_back(owner ? page.shown(*owner) : std::string());
    }
    return owners;
}

TableLayout Table::layout(const Page& page) const {
    TableLayout layout(page);
    const auto addUnlessEmpty = [&layout](const Column& column, std::vector<Cell> cells) {
        if (!std::ranges::all_of(cells, isEmpty)) layout.add(column, std::move(cells));
    };
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        const Column& column = columns_[i];
        if (!page.forPerson) {
            if (column.reader != Reader::Person) layout.add(column, cellsOf(i, page));
            continue;
        }
        if (column.reader == Reader::Program) continue;
        if (column.holds == Holds::OwnedPath && page.ownerOf)
            addUnlessEmpty({.title = wording::kApp, .holds = Holds::Text}, ownersOf(i, page));
        addUnlessEmpty(column, cellsOf(i, page));
    }
    layout.fit();
    return layout;
}

std::string Table::text(const Page& page) const {
    const TableLayout columns = layout(page);
    std::string text = page.forPerson ? columns.headings() : "";
    std::size_t rows = 0;
    for (const Line& line : lines_) {
        if (std::holds_alternative<Row>(line)) {
            text += columns.row(rows++);
        } else if (page.forPerson) {
            text += wrapped(std::get<std::string>(line), page.columns) + '\n';
        }
    }
    return text;
}

}  // namespace sweepwright::cli
