#include "ui/support/TestApp.h"

#include <QTest>

#include <gtest/gtest.h>

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

bool isLoadingImage(const QQuickItem* item) {
    constexpr int kLoading = 2;
    return item->inherits("QQuickImage") && item->property("status").toInt() == kLoading;
}

}  // namespace

TestApp::TestApp(const Options& options, const MakeScreens& makeScreens)
    : core(described(options)),
      resources_(SWEEPWRIGHT_RESOURCE_FOLDER),
      apps_(core.appServices(resources_)),
      language_(core.defaults, notifications, resources_, {options.language}),
      texts_([this](std::string_view key) { return language_.localizedStringForKey(key); },
             notifications),
      services_{core.device,
                core.files,
                core.defaults,
                notifications,
                mainQueue,
                core.engine,
                core.storage,
                apps_,
                core.pathWhitelist,
                core.appWhitelist,
                core.customPaths,
                core.history,
                language_,
                texts_,
                opener,
                resources_,
                icons} {
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

void TestApp::load(std::unique_ptr<QQuickView> view, QSize size) {
    view_ = std::move(view);
    // The process keeps pictures by their addresses, and an app before this one had the same.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    view_->releaseResources();
    ui::prepareEngine(*view_->engine(), icons);
    view_->setResizeMode(QQuickView::SizeRootObjectToView);
    view_->setInitialProperties({{QStringLiteral("scene"), QVariant::fromValue(scene_.get())}});
    view_->setSource(QUrl(QStringLiteral("qrc:/qt/qml/Sweepwright/Shell/ShellView.qml")));
    for (const QQmlError& error : view_->errors())
        ADD_FAILURE() << qPrintable(error.toString());
    view_->resize(size);
}

QQuickView& TestApp::show(QSize size) {
    load(std::make_unique<QQuickView>(), size);
    view_->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(view_.get()));
    view_->requestActivate();
    EXPECT_TRUE(QTest::qWaitForWindowActive(view_.get()));
    scene_->sceneWillConnect();
    return *view_;
}

QQuickView& TestApp::showOn(QQuickRenderControl& control, QSize size) {
    control_ = &control;
    load(std::make_unique<QQuickView>(QUrl(), &control), size);
    // What a display would tell the window.
    QResizeEvent resized(size, QSize());
    QCoreApplication::sendEvent(view_.get(), &resized);
    QFocusEvent focused(QEvent::FocusIn, Qt::ActiveWindowFocusReason);
    QCoreApplication::sendEvent(view_.get(), &focused);
    scene_->sceneWillConnect();
    return *view_;
}

void TestApp::settle() {
    bool changed = false;
    const auto watch = QObject::connect(control_, &QQuickRenderControl::sceneChanged,
                                        [&changed] { changed = true; });
    EXPECT_TRUE(waitUntil([&] {
        changed = false;
        QCoreApplication::processEvents();
        control_->polishItems();
        return !changed && firstItem(view_->contentItem(), isLoadingImage) == nullptr;
    }));
    QObject::disconnect(watch);
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
