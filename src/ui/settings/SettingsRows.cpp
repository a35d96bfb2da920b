#include "ui/settings/SettingsRows.h"

#include <algorithm>
#include <utility>

namespace sweepwright::ui {

namespace {

int sizeOf(const auto& container) {
    return static_cast<int>(container.size());
}

}  // namespace

bool SettingsRows::hasShapeOf(const std::vector<SettingsSection>& other) const {
    return std::ranges::equal(sections_, other, {}, &SettingsSection::size, &SettingsSection::size);
}

void SettingsRows::setSections(std::vector<SettingsSection> sections) {
    if (!hasShapeOf(sections)) {
        beginResetModel();
        sections_ = std::move(sections);
        endResetModel();
        return;
    }
    const std::vector<SettingsSection> before = std::exchange(sections_, std::move(sections));
    for (int section = 0; section < sizeOf(sections_); ++section) {
        const auto number = static_cast<std::size_t>(section);
        for (int row = 0; row < sizeOf(sections_[number]); ++row) {
            const auto at = static_cast<std::size_t>(row);
            if (before[number][at] != sections_[number][at]) announce(section, row);
        }
    }
}

const SettingsRow* SettingsRows::at(int section, int row) const {
    if (section < 0 || section >= sizeOf(sections_)) return nullptr;
    const SettingsSection& rows = sections_[static_cast<std::size_t>(section)];
    if (row < 0 || row >= sizeOf(rows)) return nullptr;
    return &rows[static_cast<std::size_t>(row)];
}

void SettingsRows::announce(int section, int row) {
    int at = row;
    for (int i = 0; i < section; ++i)
        at += sizeOf(sections_[static_cast<std::size_t>(i)]);
    Q_EMIT dataChanged(index(at), index(at));
}

SettingsRows::Place SettingsRows::placeOf(int index) const {
    int section = 0;
    while (index >= sizeOf(sections_[static_cast<std::size_t>(section)])) {
        index -= sizeOf(sections_[static_cast<std::size_t>(section)]);
        ++section;
    }
    return {section, index};
}

int SettingsRows::rowCount(const QModelIndex& parent) const {
    if (parent.isValid()) return 0;
    int count = 0;
    for (const SettingsSection& section : sections_)
        count += sizeOf(section);
    return count;
}

QVariant SettingsRows::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const Place place = placeOf(index.row());
    const SettingsSection& section = sections_[static_cast<std::size_t>(place.section)];
    const SettingsRow& row = section[static_cast<std::size_t>(place.row)];
    switch (role) {
        case SectionRole:
            return QString::number(place.section);
        case RowInSectionRole:
            return place.row;
        case TagRole:
            return place.section * kTagsPerSection + place.row;
        case FirstRole:
            return place.row == 0;
        case LastRole:
            return place.row == sizeOf(section) - 1;
        case TitleRole:
            return row.title;
        case SubtitleRole:
            return row.subtitle;
        case TypeRole:
            return row.type;
        case IconRole:
            return row.icon;
        case ValueRole:
            return row.value;
        case OnRole:
            return row.on;
        default:
            return {};
    }
}

QHash<int, QByteArray> SettingsRows::roleNames() const {
    return {{SectionRole, "section"},
            {RowInSectionRole, "rowInSection"},
            {TagRole, "tag"},
            {FirstRole, "first"},
            {LastRole, "last"},
            {TitleRole, "title"},
            {SubtitleRole, "subtitle"},
            {TypeRole, "type"},
            {IconRole, "icon"},
            {ValueRole, "value"},
            {OnRole, "on"}};
}

}  // namespace sweepwright::ui
