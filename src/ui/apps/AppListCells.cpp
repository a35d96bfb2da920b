#include "engine/StorageAnalyzer.h"
#include "platform/log/Log.h"
#include "protection/AppWhitelistManager.h"
#include "ui/apps/AppListViewController.h"

namespace sweepwright::ui {

namespace {

QString formatted(std::uint64_t bytes) {
    return QString::fromStdString(StorageAnalyzer::formatBytes(bytes));
}

}  // namespace

bool AppListViewController::isProtected(const ListedApp& app) const {
    return services_.appWhitelist.isAppInWhitelist(app.identifier());
}

AppRow AppListViewController::rowFor(const ListedApp& app) const {
    const bool kept = isProtected(app);
    AppRow row{.key = app.key(),
               .title = app.displayName(),
               .detail = detailOf(app, kept),
               .picture = app.icon() ? app.icon()->url() : QString(),
               .isProtected = kept};
    if (!app.info().isSystemApp) row.actions = kept ? cell_.protectedActions : cell_.actions;
    return row;
}

QString AppListViewController::detailOf(const ListedApp& app, bool isProtected) const {
    const AppCacheInfo& info = app.info();
    QString detail;
    if (info.cacheSize > 0 && info.tmpSize > 0) {
        detail = QStringLiteral("%1: %2 | %3: %4")
                     .arg(cell_.cache, formatted(info.cacheSize), cell_.temporary,
                          formatted(info.tmpSize));
    } else {
        detail = QStringLiteral("%1: %2").arg(cell_.total, formatted(info.totalSize));
    }
    return isProtected ? QStringLiteral("✅ ") + detail : detail;
}

std::vector<SwipeAction> AppListViewController::actionsOf(bool isProtected) const {
    if (isProtected) {
        return {{.title = texts()("Remove from Whitelist"),
                 .style = SwipeAction::Style::Normal,
                 .symbol = QStringLiteral("minus.circle.fill"),
                 .tint = QStringLiteral("systemOrange"),
                 .effect = SwipeAction::Effect::ToggleWhitelist}};
    }
    return {{.title = texts()("Clean"),
             .style = SwipeAction::Style::Destructive,
             .symbol = QStringLiteral("trash.fill"),
             .tint = QStringLiteral("systemRed"),
             .effect = SwipeAction::Effect::Clean},
            {.title = texts()("Add to Whitelist"),
             .style = SwipeAction::Style::Normal,
             .symbol = QStringLiteral("checkmark.shield.fill"),
             .tint = QStringLiteral("systemGreen"),
             .effect = SwipeAction::Effect::ToggleWhitelist}};
}

std::vector<SwipeAction> AppListViewController::trailingSwipeActions(int row) const {
    if (isEditingMode_ || row < 0 || row >= rows_.rowCount()) return {};
    const ListedApp& app = *currentApps_[static_cast<std::size_t>(row)];
    if (app.info().isSystemApp) return {};
    return actionsOf(isProtected(app));
}

std::vector<SwipeAction> AppListViewController::editActions(int row) const {
    return withoutSymbols(trailingSwipeActions(row));
}

void AppListViewController::performSwipeAction(int row, int action) {
    const std::vector<SwipeAction> actions = trailingSwipeActions(row);
    if (action < 0 || action >= static_cast<int>(actions.size())) return;
    const ListedAppPointer app = currentApps_[static_cast<std::size_t>(row)];
    const auto ended = [this](bool performed) { Q_EMIT swipeActionEnded(performed); };
    if (actions[static_cast<std::size_t>(action)].effect == SwipeAction::Effect::Clean) {
        cleanCacheForApp(app, ended);
    } else {
        toggleWhitelistForApp(app, row, ended);
    }
}

void AppListViewController::toggleWhitelistForApp(const ListedAppPointer& app,
                                                  std::optional<int> row,
                                                  const SwipeAction::Completion& completion) {
    AppWhitelistManager& whitelist = services_.appWhitelist;
    const bool wasProtected = isProtected(*app);
    const platform::Result<> stored = wasProtected
                                          ? whitelist.removeAppFromWhitelist(app->identifier())
                                          : whitelist.addAppToWhitelist(app->identifier());
    if (!stored) {
        // The list has logged why. What is shown stays true.
        if (completion) completion(false);
        return;
    }
    if (wasProtected) {
        platform::log("✅ 已从白名单移除: {}", app->identifier());
    } else {
        platform::log("✅ 已添加到白名单: {}", app->identifier());
    }
    services_.notifications.post("WhitelistUpdated");
    if (row) {
        rows_.setRow(*row, rowFor(*app));
    } else {
        reload(false);
    }
    if (completion) completion(true);
}

}  // namespace sweepwright::ui
