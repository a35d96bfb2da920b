#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "ui/bar/LiquidGlassTabBar.h"
#include "ui/presentation/Presenter.h"
#include "ui/presentation/ScreenServices.h"
#include "ui/shell/TabBarController.h"

namespace sweepwright::ui {

/// The one window's state: three tabs, the floating bar over them and what is presented.
class SceneDelegate : public QObject, public LiquidGlassTabBarDelegate {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by main")
    Q_PROPERTY(sweepwright::ui::TabBarController* tabBarController READ tabBarController CONSTANT)
    Q_PROPERTY(
        sweepwright::ui::LiquidGlassTabBar* liquidGlassTabBar READ liquidGlassTabBar CONSTANT)
    Q_PROPERTY(sweepwright::ui::Presenter* presenter READ presenter CONSTANT)
    Q_PROPERTY(bool pad READ pad CONSTANT)
    Q_PROPERTY(bool tabBarIsHidden READ tabBarIsHidden NOTIFY tabBarIsHiddenChanged)
    /// Of the bar's bottom from the safe area's bottom, points; below it when positive.
    Q_PROPERTY(double tabBarBottomConstant READ tabBarBottomConstant NOTIFY tabBarIsHiddenChanged)
    Q_PROPERTY(double tabBarHeight READ tabBarHeight CONSTANT)

  public:
    /// Makes the root screens of the tabs: home, apps, settings.
    using Screens = std::vector<std::unique_ptr<ScreenController>>;

    static constexpr double kScrollThreshold = 10.0;
    static constexpr double kShownConstant = -10.0;
    static constexpr double kHiddenOvershoot = 20.0;
    static constexpr double kGlassHeight = 65.0;
    static constexpr double kFrostedHeight = 55.0;
    static constexpr std::chrono::milliseconds kWelcomeDelay{500};

    /// Builds everything there is before a view. `screens` are the tabs' roots, in their order.
    SceneDelegate(const ScreenServices& services, Screens screens);
    ~SceneDelegate() override;

    /// The window is there: the first screen appears, and the welcome is on its way if due.
    void sceneWillConnect();
    /// The window is gone: nothing is observed any longer.
    void sceneDidDisconnect();

    [[nodiscard]] TabBarController* tabBarController() const { return tabs_.get(); }
    [[nodiscard]] LiquidGlassTabBar* liquidGlassTabBar() const { return bar_.get(); }
    [[nodiscard]] Presenter* presenter() const { return presenter_.get(); }
    [[nodiscard]] bool pad() const;
    [[nodiscard]] bool tabBarIsHidden() const { return tabBarIsHidden_; }
    [[nodiscard]] double tabBarBottomConstant() const;
    [[nodiscard]] double tabBarHeight() const;
    /// The bar's width over a screen of width `screenWidth`.
    [[nodiscard]] Q_INVOKABLE double tabBarWidth(double screenWidth) const;

    void hideTabBar();
    void showTabBar();
    /// A screen has scrolled from `last` to `y`.
    void handleScrollViewDidScroll(double y, double last);

    void liquidGlassTabBarDidSelectItemAtIndex(int index) override;

  Q_SIGNALS:
    void tabBarIsHiddenChanged();

  private:
    void tabBarControllerDidSelect(const NavigationController* controller);
    void checkAndShowWelcomePage();
    void setTabBarHidden(bool hidden);

    ScreenServices services_;
    std::unique_ptr<Presenter> presenter_;
    std::unique_ptr<TabBarController> tabs_;
    std::unique_ptr<LiquidGlassTabBar> bar_;
    platform::NotificationCenter::Subscription scrolling_;
    bool tabBarIsHidden_ = false;
};

}  // namespace sweepwright::ui
