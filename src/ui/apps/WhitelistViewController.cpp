#include "ui/apps/WhitelistViewController.h"

#include <algorithm>
#include <utility>

#include "apps/ThirdPartyAppCacheManager.h"
#include "engine/StorageAnalyzer.h"
#include "protection/AppWhitelistManager.h"
#include "ui/apps/AppListViewController.h"
#include "ui/presentation/AlertController.h"
#include "ui/presentation/NavigationController.h"
#include "ui/presentation/Presenter.h"

namespace sweepwright::ui {

namespace {

constexpr const char* kTitle = "清理白名单";
constexpr const char* kEmpty = "暂无白名单应用\n\n点击右上角 + 按钮添加应用";
constexpr const char* kDetail = "✅ 已保护 | 缓存: %1";
constexpr const char* kRemove = "移除";
constexpr const char* kConfirmTitle = "确认移除";
constexpr const char* kConfirmMessage =
    "确定要将 %1 从白名单移除吗？\n移除后，该应用的缓存可被一键清理。";
constexpr const char* kCancel = "取消";
constexpr const char* kAdd = "添加应用";

}  // namespace

WhitelistViewController::WhitelistViewController(const ScreenServices& services)
    : ScreenController(QUrl(QStringLiteral("qrc:/qt/qml/Sweepwright/Apps/WhitelistView.qml"))),
      services_(services),
      scrolling_(services.notifications),
      scanner_(services.apps, AppScanner::Scope::ThirdPartyApps,
               [this](const auto& installed) { show(installed); }),
      icon_(ownIcon()) {
    setTitle(QString::fromUtf8(kTitle));
    BarButtonItem& add = addRightBarButtonItem();
    add.setSymbol(QStringLiteral("plus"));
    add.setTitle(QString::fromUtf8(kAdd));
    connect(&add, &BarButtonItem::triggered, this, &WhitelistViewController::addAppToWhitelist);
}

QString WhitelistViewController::emptyText() const {
    return isEmptyLabelHidden_ ? QString() : QString::fromUtf8(kEmpty);
}

void WhitelistViewController::viewDidLoad() {
    loadWhitelistedApps();
}

void WhitelistViewController::viewWillAppear() {
    whitelistUpdates_ = services_.notifications.observe(
        "WhitelistUpdated", [this](const auto&) { loadWhitelistedApps(); });
    loadWhitelistedApps();
}

void WhitelistViewController::viewWillDisappear() {
    whitelistUpdates_.reset();
}

void WhitelistViewController::loadWhitelistedApps() {
    isLoading_ = true;
    isEmptyLabelHidden_ = true;
    if (services_.appWhitelist.getAllWhitelistedApps().empty()) {
        show({});
        isLoading_ = false;
        Q_EMIT stateChanged();
        return;
    }
    Q_EMIT stateChanged();
    scanner_.request();
}

void WhitelistViewController::show(const std::vector<AppCacheInfo>& installed) {
    std::vector<AppCacheInfo> kept;
    std::copy_if(
        installed.begin(), installed.end(), std::back_inserter(kept),
        [this](const AppCacheInfo& app) {
            return services_.appWhitelist.isAppInWhitelist(app.bundleIdentifier.value_or(""));
        });
    whitelistedApps_ = listApps(kept, [this](const auto&) { return icon_; });
    std::stable_sort(whitelistedApps_.begin(), whitelistedApps_.end(),
                     [](const ListedAppPointer& left, const ListedAppPointer& right) {
                         return left->displayName() < right->displayName();
                     });
    std::vector<AppRow> rows;
    rows.reserve(whitelistedApps_.size());
    for (const ListedAppPointer& app : whitelistedApps_)
        rows.push_back(rowFor(*app));
    rows_.setRows(std::move(rows));
    isLoading_ = scanner_.isRunning();
    isEmptyLabelHidden_ = !whitelistedApps_.empty();
    Q_EMIT stateChanged();
}

AppRow WhitelistViewController::rowFor(const ListedApp& app) const {
    const QString size = QString::fromStdString(StorageAnalyzer::formatBytes(app.info().totalSize));
    return {.key = app.key(),
            .title = app.displayName(),
            .detail = QString::fromUtf8(kDetail).arg(size),
            .picture = app.icon() ? app.icon()->url() : QString(),
            .actions = toVariants(trailingSwipeActions(0))};
}

AppIconStore::Handle WhitelistViewController::ownIcon() const {
    for (const char* file : {"icon1.png", "icon/icon1.png"}) {
        auto bytes = services_.resources.readFile(file);
        if (!bytes) continue;
        if (auto icon = AppIcon::fromBytes(std::move(*bytes)))
            return services_.icons.add(std::move(*icon));
    }
    return nullptr;
}

std::vector<SwipeAction> WhitelistViewController::trailingSwipeActions(int) const {
    return {{.title = QString::fromUtf8(kRemove),
             .style = SwipeAction::Style::Destructive,
             .symbol = QStringLiteral("minus.circle.fill"),
             .tint = QStringLiteral("systemOrange"),
             .effect = SwipeAction::Effect::Remove}};
}

std::vector<SwipeAction> WhitelistViewController::editActions(int row) const {
    return withoutSymbols(trailingSwipeActions(row));
}

void WhitelistViewController::performSwipeAction(int row, int action) {
    if (row < 0 || row >= rows_.rowCount() || action != 0) return;
    confirmRemoval(whitelistedApps_[static_cast<std::size_t>(row)],
                   [this](bool performed) { Q_EMIT swipeActionEnded(performed); });
}

void WhitelistViewController::confirmRemoval(const ListedAppPointer& app,
                                             const SwipeAction::Completion& completion) {
    if (presenter() == nullptr) return completion(false);
    auto alert = std::make_unique<AlertController>(
        AlertController::Alert, QString::fromUtf8(kConfirmTitle),
        QString::fromUtf8(kConfirmMessage).arg(app->displayName()));
    const QPointer<WhitelistViewController> self(this);
    alert
        ->addAction(QString::fromUtf8(kRemove), AlertAction::Destructive,
                    [self, app, completion] {
                        if (self) completion(self->remove(app->identifier()));
                    })
        .addAction(QString::fromUtf8(kCancel), AlertAction::Cancel, [self, completion] {
            if (self) completion(false);
        });
    presenter()->present(std::move(alert));
}

bool WhitelistViewController::remove(const std::string& identifier) {
    const bool removed = services_.appWhitelist.removeAppFromWhitelist(identifier).has_value();
    loadWhitelistedApps();
    if (removed) services_.notifications.post("WhitelistUpdated");
    return removed;
}

void WhitelistViewController::addAppToWhitelist() {
    if (navigationController() == nullptr) return;
    navigationController()->push(std::make_unique<AppListViewController>(services_));
}

}  // namespace sweepwright::ui
