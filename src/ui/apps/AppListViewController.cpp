#include "ui/apps/AppListViewController.h"

#include <QHash>
#include <QPointer>
#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/files/FileManager.h"

namespace sweepwright::ui {

AppListViewController::AppListViewController(const ScreenServices& services)
    : ScreenController(QUrl(QStringLiteral("qrc:/qt/qml/Sweepwright/Apps/AppListView.qml"))),
      services_(services),
      scrolling_(services.notifications),
      scanner_(services.apps, AppScanner::Scope::AllApps,
               [this](const auto& found) { take(found); }) {
    connect(&addRightBarButtonItem(), &BarButtonItem::triggered, this,
            &AppListViewController::toggleEditMode);
    connect(&services_.texts, &Texts::changed, this, &AppListViewController::languageChanged);
    // Cleans are recorded on their own threads.
    historyUpdates_ = services_.notifications.observe(
        "CleanHistoryUpdated", [&mainQueue = services_.mainQueue,
                                self = QPointer<AppListViewController>(this)](const auto&) {
            mainQueue.async([self] {
                if (self) self->cleanHistoryUpdated();
            });
        });
    emptyText_ = texts()("No Apps");
    readTexts();
}

void AppListViewController::viewDidLoad() {
    loadApps();
}

void AppListViewController::viewWillAppear() {
    if (!isEditingMode_) loadApps();
}

void AppListViewController::loadApps() {
    isEmptyLabelHidden_ = true;
    scanner_.request();
    Q_EMIT stateChanged();
}

void AppListViewController::refreshApps() {
    isRefreshing_ = true;
    loadApps();
}

void AppListViewController::take(const ThirdPartyAppCacheManager::AppList& found) {
    const bool isFirst = allApps_.empty();
    QHash<QString, ListedAppPointer> before;
    before.reserve(static_cast<qsizetype>(allApps_.size()));
    for (const ListedAppPointer& app : allApps_)
        before.insert(QString::fromStdString(app->identifier()), app);
    allApps_ = listApps(found, [&](const AppCacheInfo& app) {
        const ListedAppPointer known =
            before.value(QString::fromStdString(app.bundleIdentifier.value_or("")));
        return iconOf(app, known.get());
    });
    userApps_.clear();
    systemApps_.clear();
    for (const ListedAppPointer& app : allApps_)
        (app->info().isSystemApp ? systemApps_ : userApps_).push_back(app);
    filterLists();
    isRefreshing_ = isRefreshing_ && scanner_.isRunning();
    reload(!isFirst);
}

// The picture of an app that is listed already stays the same one for as long as its bytes do.
AppIconStore::Handle AppListViewController::iconOf(const AppCacheInfo& app,
                                                   const ListedApp* known) {
    if (app.appIcon) {
        const bool same = known != nullptr && known->icon() && known->info().appIcon &&
                          known->info().appIcon->bytes() == app.appIcon->bytes();
        return same ? known->icon() : services_.icons.add(*app.appIcon);
    }
    if (!app.appIconPath || !services_.files.fileExists(*app.appIconPath)) return nullptr;
    const bool same = known != nullptr && known->icon() && known->icon()->path == *app.appIconPath;
    return same ? known->icon() : services_.icons.add(*app.appIconPath);
}

void AppListViewController::languageChanged() {
    readTexts();
    updateTitleAndEmptyState();
    reload(false);
    Q_EMIT textsChanged();
}

void AppListViewController::cleanHistoryUpdated() {
    if (isEditingMode_) return;
    services_.mainQueue.after(kReloadDelay, [self = QPointer<AppListViewController>(this)] {
        if (self && !self->isEditingMode_) self->loadApps();
    });
}

void AppListViewController::readTexts() {
    setTitle(texts()("App List"));
    addRightBarButtonItem().setTitle(texts()(isEditingMode_ ? "Done" : "Select"));
    cell_ = {.cache = texts()("Cache"),
             .temporary = texts()("Temp"),
             .total = texts()("Total Size"),
             .actions = toVariants(actionsOf(false)),
             .protectedActions = toVariants(actionsOf(true))};
}

void AppListViewController::setSelectedSegment(int segment) {
    if (segment == selectedSegment_ || (segment != UserApps && segment != SystemApps)) return;
    selectedSegment_ = segment;
    if (isEditingMode_) rows_.setAllSelected(false);
    reload(false);
    Q_EMIT listReplaced();
}

void AppListViewController::filterAppsWithSearchText(const QString& text) {
    searchText_ = text;
    filterLists();
    reload(false);
    Q_EMIT listReplaced();
}

void AppListViewController::filterLists() {
    isSearching_ = !searchText_.isEmpty();
    if (!isSearching_) {
        filteredUserApps_ = userApps_;
        filteredSystemApps_ = systemApps_;
        return;
    }
    const QString lowered = searchText_.toLower();
    const auto matching = [&](const ListedApps& apps) {
        ListedApps found;
        std::copy_if(apps.begin(), apps.end(), std::back_inserter(found),
                     [&](const ListedAppPointer& app) { return app->matches(lowered); });
        return found;
    };
    filteredUserApps_ = matching(userApps_);
    filteredSystemApps_ = matching(systemApps_);
}

void AppListViewController::updateCurrentApps() {
    const bool system = selectedSegment_ == SystemApps;
    if (isSearching_) {
        currentApps_ = system ? filteredSystemApps_ : filteredUserApps_;
    } else {
        currentApps_ = system ? systemApps_ : userApps_;
    }
}

void AppListViewController::reload(bool animated) {
    if (animated != animatesChanges_) {
        animatesChanges_ = animated;
        Q_EMIT animatesChangesChanged();
    }
    updateCurrentApps();
    std::vector<AppRow> rows;
    rows.reserve(currentApps_.size());
    for (const ListedAppPointer& app : currentApps_)
        rows.push_back(rowFor(*app));
    rows_.setRows(std::move(rows));
    updateTitleAndEmptyState();
    updateSelectionCount();
}

void AppListViewController::updateTitleAndEmptyState() {
    const auto title = [this](std::string_view key, const ListedApps& apps) {
        return QStringLiteral("%1 (%2)").arg(texts()(key), QString::number(apps.size()));
    };
    QStringList titles{title("User Apps", userApps_), title("System Apps", systemApps_)};
    if (titles != segmentTitles_) {
        segmentTitles_ = std::move(titles);
        Q_EMIT segmentTitlesChanged();
    }
    isEmptyLabelHidden_ = !currentApps_.empty();
    if (isSearching_) {
        emptyText_ = texts()("No Matching Apps");
    } else {
        emptyText_ = texts()(selectedSegment_ == SystemApps ? "No System Apps" : "No User Apps");
    }
    Q_EMIT stateChanged();
}

double AppListViewController::segmentsWidth(double titleWidth, double screenWidth) const {
    const double wanted = std::max(2.0 * titleWidth + kSegmentsPadding, kSegmentsLeastWidth);
    return std::min(wanted, kSegmentsMostShare * screenWidth);
}

// --- Selecting ---

void AppListViewController::toggleEditMode() {
    setEditing(!isEditingMode_);
}

void AppListViewController::setEditing(bool editing) {
    isEditingMode_ = editing;
    rows_.setAllSelected(false);
    BarButtonItem& button = addRightBarButtonItem();
    button.setTitle(texts()(editing ? "Done" : "Select"));
    button.setProminent(editing);
    updateSelectionCount();
    Q_EMIT stateChanged();
}

void AppListViewController::updateSelectionCount() {
    Q_EMIT selectionChanged();
}

QString AppListViewController::selectAllTitle() const {
    const int count = rows_.selectedCount();
    return texts()(count > 0 && count == rows_.rowCount() ? "Deselect All" : "Select All");
}

QString AppListViewController::selectionCountText() const {
    const int count = rows_.selectedCount();
    return count > 0 ? texts()("Selected Apps Count", {count}) : texts()("No Apps Selected");
}

void AppListViewController::toggleSelectAll() {
    rows_.setAllSelected(rows_.selectedCount() != rows_.rowCount());
    updateSelectionCount();
}

void AppListViewController::didSelectRow(int row) {
    if (row < 0 || row >= rows_.rowCount()) return;
    if (isEditingMode_) {
        rows_.setSelected(row, !rows_.isSelected(row));
        updateSelectionCount();
        return;
    }
    showCleanConfirmationForApp(currentApps_[static_cast<std::size_t>(row)]);
}

}  // namespace sweepwright::ui
