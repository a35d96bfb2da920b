#include "ui/support/TestApp.h"

#include <QTest>

#include <gtest/gtest.h>

#include "support/NoWorkspace.h"
#include "ui/gallery/GalleryScreen.h"
#include "ui/kit/Appearance.h"
#include "ui/shell/App.h"
#include "ui/shell/Screens.h"
#include "ui/support/SteadyFrames.h"

namespace sweepwright::test {

namespace {

void makeHome(TemporaryDevice& device) {
    for (const char* folder : {"/var/mobile/Library/Caches", "/var/mobile/Library/Preferences",
                               "/var/mobile/tmp", "/var/mobile/Documents"}) {
        device.folder(folder);
    }
}

platform::DeviceOptions described(const TestAppOptions& options) {
    platform::DeviceOptions wanted;
    wanted.home = "/var/mobile";
    wanted.idiom = options.idiom;
    wanted.osVersion = platform::OperatingSystemVersion{options.osVersion, 0};
    return wanted;
}

}  // namespace

TestApp::TestApp(const Options& options, const MakeScreens& makeScreens)
    : core(described(options)),
      resources_(SWEEPWRIGHT_RESOURCE_FOLDER),
      appWhitelist_(core.defaults),
      apps_({core.device, core.files, core.eraser, noWorkspace, resources_, appWhitelist_,
             core.whitelist, core.history, core.statistics, notifications, mainQueue}),
      language_(core.defaults, notifications, resources_, {options.language}),
      texts_([this](std::string_view key) { return language_.localizedStringForKey(key); },
             notifications),
      services_{core.device,      core.files,   core.defaults, notifications,  mainQueue,
                core.engine,      core.storage, apps_,         core.whitelist, appWhitelist_,
                core.customPaths, core.history, language_,     texts_,         opener,
                resources_,       icons} {
    ui::Appearance::shared().setStyle(ui::Appearance::Style::Light);
    ui::Appearance::shared().setTextScale(1.0);
    ui::Appearance::shared().setReducedMotion(false);
    makeHome(device);
    if (options.welcomeShown) {
        (void)core.defaults.set("hasShownWelcome", platform::PropertyList(true));
    }
    scene_ = std::make_unique<ui::SceneDelegate>(
        services_, makeScreens ? makeScreens(services_) : ui::makeScreens(services_));
}

TestApp::~TestApp() {
    if (view_) {
        // A view that is destroyed with the focus deep in it complains.
        view_->contentItem()->setFocus(false);
        view_->hide();
    }
    view_.reset();
}

QQuickView& TestApp::show(QSize size) {
    view_ = std::make_unique<QQuickView>();
    ui::prepareEngine(*view_->engine(), icons);
    view_->setResizeMode(QQuickView::SizeRootObjectToView);
    view_->setInitialProperties({{QStringLiteral("scene"), QVariant::fromValue(scene_.get())}});
    view_->setSource(QUrl(QStringLiteral("qrc:/qt/qml/Sweepwright/Shell/ShellView.qml")));
    for (const QQmlError& error : view_->errors())
        ADD_FAILURE() << qPrintable(error.toString());
    view_->resize(size);
    view_->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(view_.get()));
    view_->requestActivate();
    EXPECT_TRUE(QTest::qWaitForWindowActive(view_.get()));
    scene_->sceneWillConnect();
    return *view_;
}

QQuickItem* TestApp::item(const char* objectName) const {
    QQuickItem* found = findItem(objectName);
    if (found == nullptr) ADD_FAILURE() << "no item named " << objectName;
    return found;
}

QQuickItem* TestApp::findItem(const char* objectName) const {
    const auto isNamed = [name = QString::fromLatin1(objectName)](const QQuickItem* each) {
        return each->objectName() == name;
    };
    QQuickItem* shown = firstItem(view_->contentItem(), [&](const QQuickItem* each) {
        return isNamed(each) && each->isVisible();
    });
    return shown != nullptr ? shown : firstItem(view_->contentItem(), isNamed);
}

QPoint TestApp::middleOf(const QQuickItem* item) {
    return item->mapToScene(QPointF(item->width() / 2.0, item->height() / 2.0)).toPoint();
}

QQuickItem* firstItem(QQuickItem* root, const std::function<bool(const QQuickItem*)>& isWanted) {
    QList<QQuickItem*> waiting{root};
    while (!waiting.isEmpty()) {
        QQuickItem* each = waiting.takeFirst();
        if (isWanted(each)) return each;
        waiting += each->childItems();
    }
    return nullptr;
}

ui::SceneDelegate::Screens withoutHome(const ui::ScreenServices& services) {
    ui::SceneDelegate::Screens screens = ui::makeScreens(services);
    screens.front() = std::make_unique<GalleryScreen>(QStringLiteral("Controls"), services.texts,
                                                      "Tab Home", services.notifications);
    return screens;
}

constexpr int kPatience = 30000;  // milliseconds

bool waitUntil(const std::function<bool()>& done) {
    const SteadyFrames::Hold hold;
    const auto afterAFrame = [&] {
        SteadyFrames::step();
        return done();
    };
    return done() || QTest::qWaitFor(afterAFrame, kPatience);
}

}  // namespace sweepwright::test
