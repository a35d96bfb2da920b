#pragma once

#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickRenderControl>
#include <QQuickView>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "apps/ThirdPartyAppCacheManager.h"
#include "localization/LanguageManager.h"
#include "protection/AppWhitelistManager.h"
#include "support/engine/EngineDevice.h"
#include "ui/apps/AppIconStore.h"
#include "ui/shell/SceneDelegate.h"

namespace sweepwright::test {

/// Remembers what was to be opened and answers as told.
class FakeUrlOpener : public ui::UrlOpener {
  public:
    [[nodiscard]] bool canOpen(const QUrl&) const override { return opens; }
    void open(const QUrl& url, const Completion& completion) override {
        opened.push_back(url);
        if (completion) completion(opens);
    }

    [[nodiscard]] bool canOpenAddress(const QByteArray& address) const override {
        return opens && !address.startsWith(refused);
    }
    void openAddress(const QByteArray& address, const Completion& completion) override {
        openedAddresses.append(address);
        if (completion) completion(opens && !fails);
    }

    std::vector<QUrl> opened;
    QByteArrayList openedAddresses;
    bool opens = true;
    bool fails = false;               ///< to open an address that it says it can open
    QByteArray refused = "refused:";  ///< beginning of the addresses that it can't open
};

struct TestAppOptions {
    platform::Idiom idiom = platform::Idiom::Phone;
    int osVersion = 26;
    std::string language = "en";
    bool welcomeShown = true;
};

/// The whole app on a temporary device, with the real texts and without a window until show().
/// Looks the same on every machine: light, no larger text, motion as it is.
class TestApp {
  public:
    using Options = TestAppOptions;
    using MakeScreens = std::function<ui::SceneDelegate::Screens(const ui::ScreenServices&)>;

    /// `makeScreens` gives the tabs' roots; without it they are the product's own.
    explicit TestApp(const Options& options = {}, const MakeScreens& makeScreens = {});
    ~TestApp();

    /// Opens a window of this size in points and waits until it has drawn.
    QQuickView& show(QSize size = {390, 844});
    /// Makes the same window, active, but on no display: whoever has `control` draws it.
    QQuickView& showOn(QQuickRenderControl& control, QSize size);
    /// Lays a window on no display out, until no event and no image changes it any more.
    void settle();
    [[nodiscard]] QQuickView& window() { return *view_; }
    /// The item of this object name: of several one that is shown; fails the test when there is
    /// none.
    [[nodiscard]] QQuickItem* item(const char* objectName) const;
    /// The same, or none.
    [[nodiscard]] QQuickItem* findItem(const char* objectName) const;
    /// The middle of an item in the window's points.
    [[nodiscard]] static QPoint middleOf(const QQuickItem* item);

    [[nodiscard]] ui::SceneDelegate& scene() { return *scene_; }
    [[nodiscard]] ui::Presenter& presenter() { return *scene_->presenter(); }
    [[nodiscard]] const ui::ScreenServices& services() const { return services_; }

    /// The device, its lists and its engine.
    EngineDevice core;
    TemporaryDevice& device = core.tree;
    platform::NotificationCenter& notifications = core.notifications;
    platform::MainQueue& mainQueue = core.mainQueue;
    FakeUrlOpener opener;
    ui::AppIconStore icons{core.files};

  private:
    void load(std::unique_ptr<QQuickView> view, QSize size);

    platform::ResourceBundle resources_;
    ThirdPartyAppCacheManager apps_;
    localization::LanguageManager language_;
    ui::Texts texts_;
    ui::ScreenServices services_;
    std::unique_ptr<ui::SceneDelegate> scene_;
    std::unique_ptr<QQuickView> view_;
    QQuickRenderControl* control_ = nullptr;  ///< of a window on no display
};

/// The first item of which `isWanted` says so, of `root` and what is in it, level by level; or
/// none.
QQuickItem* firstItem(QQuickItem* root, const std::function<bool(const QQuickItem*)>& isWanted);

/// The product's screens but for the home screen, whose first scan of the apps would mingle with
/// what a test counts.
ui::SceneDelegate::Screens withoutHome(const ui::ScreenServices& services);

/// Runs the event loop until `done` answers true, which is asked after every frame of an animation;
/// false when it does not within half a minute,
/// which only a machine that hangs needs.
bool waitUntil(const std::function<bool()>& done);

}  // namespace sweepwright::test
