// Which apps are installed: the workspace service, and a walk of the containers.
#include <algorithm>
#include <set>

#include "apps/BundleIndex.h"
#include "apps/ThirdPartyAppCacheManager.h"
#include "platform/log/Log.h"
#include "platform/tree/ParallelFor.h"

namespace sweepwright {

using platform::ApplicationProxy;
using platform::ApplicationWorkspace;
using platform::joinPath;
using platform::log;

namespace {

/// The variant of an icon that lists show.
constexpr std::int32_t kIconVariant = 10;
/// Containers are many and small: this many at once keep a disk busy.
constexpr unsigned kSizingThreads = 4;

constexpr std::array<std::string_view, 3> kSystemPrefixes = {"com.apple.", "com.facebook.",
                                                             "com.twitter."};

/// The picture that the service hands out; an error is an exception of the service.
platform::Result<std::optional<AppIcon>> iconFromProxy(ApplicationProxy& proxy) {
    auto data = proxy.iconDataForVariant(kIconVariant);
    if (!data) return std::unexpected(data.error());
    if (*data && !(*data)->empty())
        if (auto icon = AppIcon::fromBytes(std::move(**data))) return icon;
    auto sizes = proxy.iconsOfAllSizes();
    if (!sizes) return std::unexpected(sizes.error());
    for (ApplicationProxy::SizedIcon& size : *sizes)
        if (!size.data.empty())
            if (auto icon = AppIcon::fromBytes(std::move(size.data))) return icon;
    return std::optional<AppIcon>();
}

}  // namespace

/// A container found by the walk. A system app among them may yet be dropped.
struct ThirdPartyAppCacheManager::Candidate {
    AppCacheInfo info;
    std::optional<std::string> iconName;
};

ThirdPartyAppCacheManager::AppList ThirdPartyAppCacheManager::scanNow(const Progress& progress) {
    AppList apps;
    const bool isPad = services_.device.idiom() == platform::Idiom::Pad;
    const std::string_view deviceType = isPad ? "iPad" : "iPhone";
    log("📱 当前设备类型: {}", deviceType);
    scanWorkspace(apps, progress);
    if (isPad || apps.size() < kEnoughApps) {
        log("📂 补充扫描应用目录（设备类型: {}, 当前应用数: {}）", deviceType, apps.size());
        scanAppDirectoriesIntoArray(apps, progress);
    }
    std::ranges::stable_sort(apps, std::ranges::greater{}, &AppCacheInfo::totalSize);
    log("📊 最终找到 {} 个应用（设备: {}）", apps.size(), deviceType);
    const std::lock_guard lock(mutex_);
    cachedAppList_ = std::make_shared<const AppList>(apps);
    return apps;
}

ApplicationWorkspace::Applications ThirdPartyAppCacheManager::workspaceApplications() {
    switch (services_.workspace.availability()) {
        case ApplicationWorkspace::Availability::ClassMissing:
            log("⚠️ LSApplicationWorkspace 类不可用");
            return {};
        case ApplicationWorkspace::Availability::InstanceMissing:
            log("⚠️ 无法获取 LSApplicationWorkspace 实例");
            return {};
        case ApplicationWorkspace::Availability::Available:
            break;
    }
    auto installed = services_.workspace.allInstalledApplications();
    if (!installed) {
        log("⚠️ allInstalledApplications 调用失败: {}", installed.error().description);
    } else if (*installed) {
        log("🔍 使用 allInstalledApplications 发现 {} 个应用", (*installed)->size());
        if (!(*installed)->empty()) return std::move(**installed);
    }
    auto all = services_.workspace.allApplications();
    if (!all) {
        log("⚠️ allApplications 调用失败: {}", all.error().description);
    } else if (*all) {
        log("🔍 使用 allApplications 发现 {} 个应用", (*all)->size());
        if (!(*all)->empty()) return std::move(**all);
    }
    log("⚠️ 私有API未返回应用列表，可能是权限问题或非越狱设备");
    return {};
}

void ThirdPartyAppCacheManager::scanWorkspace(AppList& apps, const Progress& progress) {
    const auto proxies = workspaceApplications();
    if (proxies.empty()) return;
    for (const auto& proxy : proxies) {
        auto info = readProxy(*proxy);
        if (!info) {
            log("⚠️ 提取应用信息失败: {}", info.error().description);
        } else if (info->bundleIdentifier) {
            apps.push_back(std::move(*info));
        }
    }
    HiddenRoots hiddenRoots(services_.files, unreadableTo(observer_));
    std::atomic<std::size_t> done{0};
    platform::parallelFor(*crew_, apps.size(), kSizingThreads, [&](std::size_t i) {
        calculate(apps[i], hiddenRoots);
        report(progress, apps[i], ++done, apps.size());
    });
    log("✅ 成功提取 {} 个应用信息", apps.size());
}

platform::Result<AppCacheInfo> ThirdPartyAppCacheManager::readProxy(ApplicationProxy& proxy) {
    AppCacheInfo info;
    auto identifier = proxy.applicationIdentifier();
    if (!identifier) return std::unexpected(identifier.error());
    auto name = proxy.localizedName();
    if (!name) return std::unexpected(name.error());
    auto bundle = proxy.bundlePath();
    if (!bundle) return std::unexpected(bundle.error());
    auto data = proxy.dataContainerPath();
    if (!data) return std::unexpected(data.error());
    info.bundleIdentifier = std::move(*identifier);
    info.appName = std::move(*name);
    info.bundlePath = std::move(*bundle);
    info.dataPath = std::move(*data);
    info.appIcon = extractAppIconFromProxy(&proxy, info.bundlePath);
    info.isSystemApp = isSystemApp(info.bundleIdentifier, info.bundlePath);
    return info;
}

platform::Result<AppCacheInfo> ThirdPartyAppCacheManager::extractAppInfoFromProxy(
    ApplicationProxy& proxy) {
    auto info = readProxy(proxy);
    if (info) calculateCacheSizeForAppInfo(*info);
    return info;
}

bool ThirdPartyAppCacheManager::isSystemApp(const std::optional<std::string>& bundleIdentifier,
                                            const std::optional<std::string>& bundlePath) {
    if (bundleIdentifier)
        for (const std::string_view prefix : kSystemPrefixes)
            if (bundleIdentifier->starts_with(prefix)) return true;
    return bundlePath && bundlePath->contains("/Applications/");
}

std::optional<AppIcon> ThirdPartyAppCacheManager::extractAppIconFromProxy(
    ApplicationProxy* proxy, const std::optional<std::string>& bundlePath) {
    if (proxy != nullptr) {
        auto icon = iconFromProxy(*proxy);
        if (!icon) {
            log("⚠️ 获取应用图标失败（私有API）: {}", icon.error().description);
        } else if (*icon) {
            return std::move(*icon);
        }
    }
    std::optional<std::string> iconName;
    if (bundlePath && !bundlePath->empty())
        if (const auto bundle = readBundleInfo(services_.files, *bundlePath))
            iconName = bundle->iconName();
    return iconOfBundle(bundlePath, iconName);
}

std::optional<AppIcon> ThirdPartyAppCacheManager::iconOfBundle(
    const std::optional<std::string>& bundlePath, const std::optional<std::string>& iconName) {
    if (bundlePath && !bundlePath->empty())
        if (auto icon = findBundleIcon(services_.files, *bundlePath, iconName)) return icon;
    return sharedOwnIcon();
}

std::optional<AppIcon> ThirdPartyAppCacheManager::sharedOwnIcon() {
    std::call_once(ownIconRead_, [this] { ownIcon_ = ownIcon(services_.resources); });
    return ownIcon_;
}

void ThirdPartyAppCacheManager::reportHiddenRoots() {
    const std::string groups(kAppGroups);
    if (!services_.files.fileExists(groups)) return;
    const auto names =
        services_.files.contentsOfDirectory(groups).value_or(std::vector<std::string>());
    log("📂 扫描 AppGroup 目录: {}, 发现 {} 个 AppGroup", groups, names.size());
    for (const std::string& name : names) {
        if (!name.starts_with(kHiddenRootPrefix)) continue;
        const std::string root = joinPath(groups, name);
        log("🔍 发现隐根设备路径: {}", root);
        const std::string var = joinPath(root, "var");
        if (services_.files.isDirectory(var)) log("🔍 隐根路径包含 var 目录: {}", var);
    }
}

void ThirdPartyAppCacheManager::describeFromBundle(Candidate& candidate,
                                                   const std::string& containerName,
                                                   const BundleIndex& bundles) {
    AppCacheInfo& info = candidate.info;
    for (const BundleInfo& bundle : bundles.find(*info.bundleIdentifier)) {
        info.bundlePath = bundle.path;
        info.appName = bundle.shownName();
        if (bundle.iconFile) {
            const std::string base = joinPath(bundle.path, *bundle.iconFile);
            info.appIconPath = services_.files.fileExists(base + ".png") ? base + ".png" : base;
        }
        candidate.iconName = bundle.iconName();
        // A bundle that gives no better name than the container's leaves the search open.
        if (info.appName != containerName) break;
    }
    if (!info.appName || info.appName->empty()) info.appName = info.bundleIdentifier;
    info.isSystemApp = isSystemApp(info.bundleIdentifier, info.bundlePath);
}

std::vector<ThirdPartyAppCacheManager::Candidate> ThirdPartyAppCacheManager::findCandidates(
    const std::vector<std::string>& containers, std::set<std::string> known) {
    const BundleIndex bundles(services_.files, unreadableTo(observer_));
    std::vector<Candidate> candidates;
    for (const std::string& name : containers) {
        const std::string path = joinPath(kDataContainers, name);
        const auto attributes = services_.files.attributes(path, platform::LastLink::Follow);
        if (!attributes) noteUnreadable(path, attributes.error(), observer_);
        if (!attributes || attributes->type != platform::FileType::Directory) continue;
        const std::string identifier = containerIdentifier(services_.files, path);
        if (known.contains(identifier)) continue;
        Candidate candidate;
        candidate.info.dataPath = path;
        candidate.info.bundleIdentifier = identifier;
        describeFromBundle(candidate, name, bundles);
        // A system app may be dropped for having nothing, and another container take its place.
        if (!candidate.info.isSystemApp) known.insert(identifier);
        candidates.push_back(std::move(candidate));
    }
    return candidates;
}

void ThirdPartyAppCacheManager::scanAppDirectoriesIntoArray(AppList& apps,
                                                            const Progress& progress) {
    const auto listed = services_.files.contentsOfDirectory(std::string(kDataContainers));
    if (!listed) noteUnreadable(std::string(kDataContainers), listed.error(), observer_);
    const auto containers = listed.value_or(std::vector<std::string>());
    log("📂 扫描容器目录: {}, 发现 {} 个容器", kDataContainers, containers.size());
    reportHiddenRoots();
    std::set<std::string> known;
    for (const AppCacheInfo& app : apps)
        if (app.bundleIdentifier) known.insert(*app.bundleIdentifier);

    auto candidates = findCandidates(containers, known);
    HiddenRoots hiddenRoots(services_.files, unreadableTo(observer_));
    std::atomic<std::size_t> done{0};
    platform::parallelFor(*crew_, candidates.size(), kSizingThreads, [&](std::size_t i) {
        AppCacheInfo& info = candidates[i].info;
        if (info.bundlePath) info.appIcon = iconOfBundle(info.bundlePath, candidates[i].iconName);
        calculate(info, hiddenRoots);
        report(progress, info, ++done, candidates.size());
    });

    std::size_t added = 0;
    for (Candidate& candidate : candidates) {
        AppCacheInfo& info = candidate.info;
        if (info.isSystemApp && info.totalSize == 0) continue;
        if (!known.insert(*info.bundleIdentifier).second) continue;
        apps.push_back(std::move(info));
        ++added;
    }
    log("✅ 从目录扫描新增 {} 个应用", added);
}

bool ThirdPartyAppCacheManager::isInstalled(const std::string& bundleIdentifier) {
    // Most have a container, which is found without a look into every bundle.
    const auto container = getAppDataDirectory(bundleIdentifier);
    return (container && *container) ||
           std::ranges::binary_search(installedIdentifiers(), bundleIdentifier);
}

std::vector<std::string> ThirdPartyAppCacheManager::installedIdentifiers() {
    std::set<std::string> found;
    for (const auto& proxy : workspaceApplications()) {
        if (auto identifier = proxy->applicationIdentifier(); identifier && *identifier)
            found.insert(std::move(**identifier));
    }
    const auto containers = services_.files.contentsOfDirectory(std::string(kDataContainers))
                                .value_or(std::vector<std::string>());
    for (const std::string& name : containers) {
        const std::string path = joinPath(kDataContainers, name);
        if (services_.files.isDirectory(path))
            found.insert(containerIdentifier(services_.files, path));
    }
    for (std::string& identifier : BundleIndex(services_.files).identifiers())
        found.insert(std::move(identifier));
    return {found.begin(), found.end()};
}

void ThirdPartyAppCacheManager::report(const Progress& progress, const AppCacheInfo& app,
                                       std::size_t done, std::size_t count) {
    if (progress)
        progress(app.appName.value_or(app.bundleIdentifier.value_or("")),
                 static_cast<double>(done) / static_cast<double>(count));
}

}  // namespace sweepwright
