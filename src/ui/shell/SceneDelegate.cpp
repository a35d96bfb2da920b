#include "ui/shell/SceneDelegate.h"

#include <QPointer>
#include <array>
#include <cmath>
#include <string_view>
#include <utility>

#include "ui/presentation/ScrollReporter.h"
#include "ui/welcome/WelcomeViewController.h"

namespace sweepwright::ui {

namespace {

struct Tab {
    std::string_view titleKey;
    const char* symbol;
};

constexpr std::array kTabs = {
    Tab{"Tab Home", "house.fill"},
    Tab{"Tab Apps", "app.badge.fill"},
    Tab{"Tab Settings", "gearshape.fill"},
};

std::vector<LiquidGlassTabBar::Item> barItems(const Texts& texts) {
    std::vector<LiquidGlassTabBar::Item> items;
    items.reserve(kTabs.size());
    for (const Tab& tab : kTabs) {
        items.push_back({texts(tab.titleKey), QString::fromLatin1(tab.symbol)});
    }
    return items;
}

// A number of a notification, as the 32-bit float that it counts as; 0 when it is missing.
double number(const platform::NotificationCenter::UserInfo& info, std::string_view key) {
    const auto found = info.find(key);
    return found == info.end() ? 0.0 : static_cast<double>(static_cast<float>(found->second));
}

}  // namespace

SceneDelegate::SceneDelegate(const ScreenServices& services, Screens screens)
    : services_(services),
      presenter_(std::make_unique<Presenter>()),
      bar_(std::make_unique<LiquidGlassTabBar>(barItems(services.texts),
                                               services.device.osVersion())) {
    std::vector<std::unique_ptr<NavigationController>> controllers;
    controllers.reserve(screens.size());
    for (auto& screen : screens) {
        controllers.push_back(
            std::make_unique<NavigationController>(std::move(screen), *presenter_));
    }
    tabs_ = std::make_unique<TabBarController>(std::move(controllers));
    connect(tabs_.get(), &TabBarController::didSelectViewController, this,
            &SceneDelegate::tabBarControllerDidSelect);
    bar_->setDelegate(this);
    scrolling_ = services_.notifications.observe(
        std::string(ScrollReporter::kNotification), [this](const auto& info) {
            handleScrollViewDidScroll(number(info, ScrollReporter::kOffset),
                                      number(info, ScrollReporter::kLastOffset));
        });
}

SceneDelegate::~SceneDelegate() = default;

void SceneDelegate::sceneWillConnect() {
    tabs_->setVisible(true);
    checkAndShowWelcomePage();
}

void SceneDelegate::sceneDidDisconnect() {
    scrolling_.reset();
}

bool SceneDelegate::pad() const {
    return services_.device.idiom() == platform::Idiom::Pad;
}

double SceneDelegate::tabBarHeight() const {
    return bar_->glass() ? kGlassHeight : kFrostedHeight;
}

double SceneDelegate::tabBarWidth(double screenWidth) const {
    return bar_->glass() ? screenWidth * 0.65 + 40.0 : screenWidth * 0.5 + 30.0;
}

double SceneDelegate::tabBarBottomConstant() const {
    return tabBarIsHidden_ ? tabBarHeight() + kHiddenOvershoot : kShownConstant;
}

void SceneDelegate::handleScrollViewDidScroll(double y, double last) {
    const bool atTop = y <= 0.0;
    if (!atTop && std::abs(y - last) < kScrollThreshold) return;
    setTabBarHidden(!atTop && y > last);
}

void SceneDelegate::hideTabBar() {
    setTabBarHidden(true);
}

void SceneDelegate::showTabBar() {
    setTabBarHidden(false);
}

void SceneDelegate::setTabBarHidden(bool hidden) {
    if (hidden == tabBarIsHidden_) return;
    tabBarIsHidden_ = hidden;
    Q_EMIT tabBarIsHiddenChanged();
}

void SceneDelegate::liquidGlassTabBarDidSelectItemAtIndex(int index) {
    if (index >= 0 && index < tabs_->count()) tabs_->setSelectedIndex(index);
}

void SceneDelegate::tabBarControllerDidSelect(const NavigationController* controller) {
    const int index = tabs_->indexOf(controller);
    if (index >= 0) bar_->setSelectedIndex(index, true);
}

void SceneDelegate::checkAndShowWelcomePage() {
    if (services_.defaults.boolean(WelcomeViewController::kShownKey)) return;
    services_.mainQueue.after(kWelcomeDelay, [self = QPointer<SceneDelegate>(this)] {
        if (!self) return;
        const ScreenServices& services = self->services_;
        self->presenter_->present(std::make_unique<WelcomeViewController>(
            services.texts, services.defaults, services.opener));
    });
}

}  // namespace sweepwright::ui
