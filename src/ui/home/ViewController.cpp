// What the screen shows, and the scans.
#include "ui/home/ViewController.h"

#include <QPointer>
#include <algorithm>
#include <numeric>
#include <utility>

#include <fmt/format.h>

#include "engine/Categories.h"
#include "localization/LocalizedFormat.h"
#include "ui/presentation/Addresses.h"
#include "ui/presentation/Presenter.h"

namespace sweepwright::ui {

namespace {

using localization::formatLocalized;

struct Card {
    std::string_view titleKey;
    const char* icon;
    void (ViewController::*clean)();
    void (ViewController::*tap)();
};

constexpr std::array kCards = {
    Card{"Cache Files", "tray.full.fill", &ViewController::cleanCacheTapped,
         &ViewController::cacheCardTapped},
    Card{"Temp Files", "clock.arrow.circlepath", &ViewController::cleanTempTapped,
         &ViewController::tempCardTapped},
    Card{"Cookie & Web Data", "globe.badge.chevron.backward", &ViewController::cleanCookieTapped,
         &ViewController::cookieCardTapped},
    Card{"System Logs", "list.bullet.rectangle.portrait.fill", &ViewController::cleanLogTapped,
         &ViewController::logCardTapped},
    Card{"Third Party App Cache", "app.badge.fill", &ViewController::cleanAppCacheTapped,
         &ViewController::appCacheCardTapped},
};

// Stands for a figure that the device does not tell.
constexpr const char* kUnknown = "–";

QString formatted(std::uint64_t bytes) {
    return QString::fromStdString(StorageAnalyzer::formatBytes(bytes));
}

std::vector<std::string> pathsOf(const std::vector<CacheEntry>& entries) {
    std::vector<std::string> paths;
    paths.reserve(entries.size());
    for (const CacheEntry& entry : entries)
        paths.push_back(entry.path);
    return paths;
}

}  // namespace

// Of the first four cards, which are the first four categories.
struct ViewController::Sizes {
    std::array<std::uint64_t, 4> bytes{};
};

struct ViewController::Lists {
    std::array<std::vector<std::string>, 4> rows;

    // Stops early, and answers none, once nobody waits for them any more.
    static std::optional<Lists> fetch(FileCleanerEngine& engine, const std::stop_token& stop) {
        Lists lists;
        for (std::size_t at = 0; at < lists.rows.size(); ++at) {
            if (stop.stop_requested()) return std::nullopt;
            const auto list = categories()[at].list;
            lists.rows[at] =
                list != nullptr ? (engine.*list)() : pathsOf(engine.getCacheFileList());
        }
        return lists;
    }
};

ViewController::ViewController(const ScreenServices& services)
    : ScreenController(QUrl(QStringLiteral("qrc:/qt/qml/Sweepwright/Home/HomeView.qml"))),
      services_(services),
      scrolling_(services.notifications),
      background_(platform::DispatchQueue::concurrent("com.sweepwright.home")),
      cleanItemsTitle_(texts("Clean Items")) {
    for (std::size_t at = 0; at < kCards.size(); ++at)
        connectCard(at);
    connect(&services_.texts, &Texts::changed, this, &ViewController::languageChanged);
}

ViewController::~ViewController() {
    // What still runs in the background sees that nobody waits for it and ends early; then its
    // queue is waited for.
    closing_.request_stop();
    for (auto& card : cards_)
        card.reset();
    background_.reset();
}

void ViewController::connectCard(std::size_t at) {
    const Card& card = kCards[at];
    cards_[at] = std::make_unique<CleanItemCardView>(
        texts(card.titleKey), QString::fromLatin1(card.icon),
        CardServices{services_.files, *background_, services_.mainQueue});
    cards_[at]->setDelegate(this);
    connect(cards_[at].get(), &CleanItemCardView::cleanTapped, this, card.clean);
    connect(cards_[at].get(), &CleanItemCardView::tapped, this, card.tap);
}

QList<CleanItemCardView*> ViewController::cards() const {
    QList<CleanItemCardView*> list;
    for (const auto& card : cards_)
        list.append(card.get());
    return list;
}

void ViewController::viewDidLoad() {
    updateStorageInfo();
    performInitialScan();
}

void ViewController::languageChanged() {
    updateStorageInfo();
    Q_EMIT textsChanged();
}

std::string ViewController::format(std::string_view key) const {
    return texts(key).toStdString();
}

QString ViewController::developerHandle() {
    return QString::fromUtf8(addresses::kHandle);
}

QString ViewController::repositoryAddress() {
    return QString::fromUtf8(addresses::kRepository);
}

ViewController::ProgressColor ViewController::colorOf(double usagePercentage) {
    if (usagePercentage < kOrangeFrom) return SystemGreen;
    return usagePercentage < kRedFrom ? SystemOrange : SystemRed;
}

void ViewController::updateStorageInfo() {
    const std::optional<DeviceStorageInfo> info = services_.storage.getDeviceStorageInfo();
    usagePercentage_ = info ? info->usagePercentage : 0.0;
    storageText_ = QString::fromStdString(
        fmt::format("{:.0f}%\n{}", usagePercentage_, format("Used Percentage")));
    storageInfo_ = QString::fromStdString(
        fmt::format("{}: {} | {}: {} | {}: {}", format("Total Capacity"),
                    info ? info->totalSpaceFormatted : kUnknown, format("Used"),
                    info ? info->usedSpaceFormatted : kUnknown, format("Available"),
                    info ? info->freeSpaceFormatted : kUnknown));
    Q_EMIT storageChanged();
}

void ViewController::performInitialScan() {
    for (std::size_t at = 0; at < Sizes{}.bytes.size(); ++at)
        cards_[at]->updateSize(texts("Scanning..."));
    background_->async([&engine = services_.engine, &mainQueue = services_.mainQueue,
                        stop = closing_.get_token(), self = QPointer(this)] {
        Sizes sizes;
        for (std::size_t at = 0; at < sizes.bytes.size(); ++at) {
            if (stop.stop_requested()) return;
            sizes.bytes[at] = (engine.*categories()[at].size)();
        }
        if (stop.stop_requested()) return;
        std::optional<Lists> lists = Lists::fetch(engine, stop);
        if (!lists) return;
        mainQueue.async([self, sizes, lists = std::move(*lists)]() mutable {
            if (!self) return;
            self->showSizes(sizes);
            self->showLists(std::move(lists));
            self->scanThirdPartyAppCaches();
        });
    });
}

void ViewController::showSizes(const Sizes& sizes) {
    for (std::size_t at = 0; at < sizes.bytes.size(); ++at)
        cards_[at]->updateSize(formatted(sizes.bytes[at]));
}

void ViewController::showLists(Lists lists) {
    for (std::size_t at = 0; at < lists.rows.size(); ++at)
        cards_[at]->updateFileList(std::move(lists.rows[at]));
}

void ViewController::scanButtonTapped() {
    if (scanning_ || isCovered()) return;
    scanning_ = true;
    Q_EMIT scanningChanged();
    services_.engine.scanWithCompletion([self = QPointer(this)](const ScanResult& result) {
        if (self) self->scanDidComplete(result);
    });
}

void ViewController::scanDidComplete(const ScanResult& result) {
    scanning_ = false;
    Q_EMIT scanningChanged();
    totalCleanableSize_ = result.totalSize;
    Sizes sizes;
    for (std::size_t at = 0; at < sizes.bytes.size(); ++at)
        sizes.bytes[at] = result.*categories()[at].figure;
    showSizes(sizes);
    fetchLists();
    tell("Scan Completed",
         QString::fromStdString(formatLocalized(format("Found Cleanable Space"),
                                                {StorageAnalyzer::formatBytes(result.totalSize)})));
}

void ViewController::fetchLists() {
    background_->async([&engine = services_.engine, &mainQueue = services_.mainQueue,
                        stop = closing_.get_token(), self = QPointer(this)] {
        std::optional<Lists> lists = Lists::fetch(engine, stop);
        if (!lists) return;
        mainQueue.async([self, lists = std::move(*lists)]() mutable {
            if (!self) return;
            self->showLists(std::move(lists));
            self->scanThirdPartyAppCaches();
        });
    });
}

void ViewController::scanThirdPartyAppCaches() {
    appCacheCard().updateSize(texts("Scanning..."));
    services_.apps.scanThirdPartyAppsWithCompletion(
        [self = QPointer(this)](const ThirdPartyAppCacheManager::AppList& apps) {
            if (self) self->showApps(apps);
        });
}

void ViewController::showApps(const std::vector<AppCacheInfo>& apps) {
    std::uint64_t total = 0;
    std::vector<std::string> entries;
    entries.reserve(apps.size());
    for (const AppCacheInfo& app : apps) {
        total += app.totalSize;
        entries.push_back(fmt::format("{} ({})",
                                      app.appName.value_or(app.bundleIdentifier.value_or("")),
                                      StorageAnalyzer::formatBytes(app.totalSize)));
    }
    thirdPartyAppList_ = apps;
    appCacheCard().updateSize(QString::fromStdString(formatLocalized(
        format("App Count Format"), {StorageAnalyzer::formatBytes(total), apps.size()})));
    appCacheCard().updateFileList(std::move(entries));
}

bool ViewController::gestureRecognizerShouldReceiveTouch(CleanItemCardView* card,
                                                         QPointF point) const {
    const bool known = std::any_of(cards_.begin(), cards_.end(),
                                   [card](const auto& each) { return each.get() == card; });
    if (!known) return true;
    return !card->isPointInFileTableView(point) && !card->cleanButtonFrame().contains(point);
}

}  // namespace sweepwright::ui
