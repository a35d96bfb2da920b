#include "ui/shell/App.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <cstdio>
#include <memory>

#include "apps/ThirdPartyAppCacheManager.h"
#include "engine/FileCleanerEngine.h"
#include "launch/GlobalOptions.h"
#include "launch/Version.h"
#include "localization/LanguageManager.h"
#include "platform/log/Log.h"
#include "ui/apps/AppIconProvider.h"
#include "ui/kit/Appearance.h"
#include "ui/kit/SymbolProvider.h"
#include "ui/presentation/MainQueueHook.h"
#include "ui/shell/AppDelegate.h"
#include "ui/shell/DesktopUrlOpener.h"
#include "ui/shell/LaunchOptions.h"
#include "ui/shell/Screens.h"

namespace sweepwright::ui {

namespace {

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kWrongWords = 2;
constexpr int kDeviceUnusable = 3;

void say(std::FILE* stream, const QString& line) {
    std::fputs(qUtf8Printable(line + QLatin1Char('\n')), stream);
}

int complain(int status, const QString& line) {
    say(stderr, QStringLiteral("sweepwright: ") + line);
    return status;
}

platform::Result<> openDevice(const LaunchOptions& options) {
    auto choice = launch::chooseDevice(options.global, launch::processEnvironment());
    if (!choice) return std::unexpected(std::move(choice.error()));
    choice->options.osVersion = options.osVersion;
    return launch::openCurrentDevice(choice->options);
}

int runScene(QGuiApplication& application) {
    const platform::Device& device = platform::Device::current();
    platform::FileManager& files = platform::FileManager::defaultManager();
    localization::LanguageManager& language = localization::LanguageManager::sharedManager();
    AppDelegate(device, files).applicationDidFinishLaunching();

    MainQueueHook hook(platform::MainQueue::shared());
    DesktopUrlOpener opener;
    AppIconStore icons(files);
    auto& notifications = platform::NotificationCenter::defaultCenter();
    Texts texts([&language](std::string_view key) { return language.localizedStringForKey(key); },
                notifications);
    const ScreenServices services{device,
                                  files,
                                  platform::UserDefaults::standard(),
                                  notifications,
                                  platform::MainQueue::shared(),
                                  FileCleanerEngine::sharedEngine(),
                                  StorageAnalyzer::sharedAnalyzer(),
                                  ThirdPartyAppCacheManager::sharedManager(),
                                  PathWhitelistManager::sharedManager(),
                                  AppWhitelistManager::sharedManager(),
                                  CustomPathManager::sharedManager(),
                                  CleanHistoryManager::sharedManager(),
                                  language,
                                  texts,
                                  opener,
                                  platform::ResourceBundle::main(),
                                  icons};
    SceneDelegate scene(services, makeScreens(services));

    QQmlApplicationEngine engine;
    prepareEngine(engine, icons);
    engine.setInitialProperties({{QStringLiteral("scene"), QVariant::fromValue(&scene)}});
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Sweepwright/Shell/Main.qml")));
    if (engine.rootObjects().isEmpty()) return complain(kFailed, QStringLiteral("no window"));
    scene.sceneWillConnect();
    const int status = application.exec();
    scene.sceneDidDisconnect();
    return status;
}

}  // namespace

void prepareEngine(QQmlEngine& engine, const AppIconStore& icons) {
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(SymbolProvider::kIdentifier, new SymbolProvider);
    engine.addImageProvider(AppIconStore::kProvider, new AppIconProvider(icons));
}

std::optional<int> answerQuestion(const QStringList& words) {
    const auto options = parseLaunchOptions(words);
    if (!options || options->kind == LaunchOptions::Kind::Run) return std::nullopt;
    say(stdout, options->kind == LaunchOptions::Kind::Help
                    ? options->helpText.trimmed()
                    : QString::fromStdString(launch::versionText("sweepwright")));
    return kDone;
}

int runApp(QGuiApplication& application, const QStringList& words) {
    // Qt has taken its own options away, so that the rest may be a question now.
    if (const auto status = answerQuestion(words)) return *status;
    const auto options = parseLaunchOptions(words);
    if (!options) return complain(kWrongWords, options.error());
    launch::startProgramLog("sweepwright", options->global.verbose, launch::processEnvironment());
    if (const auto opened = openDevice(*options); !opened) {
        const bool wrongWords = opened.error().domain == platform::kDeviceOptionsErrorDomain;
        return complain(wrongWords ? kWrongWords : kDeviceUnusable,
                        QString::fromStdString(opened.error().description));
    }
    Appearance::shared().setStyle(options->style);
    Appearance::shared().followDesktop();
    const int status = runScene(application);
    platform::flushLog();
    return status;
}

}  // namespace sweepwright::ui
