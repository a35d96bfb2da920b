#pragma once

#include "platform/device/Device.h"
#include "platform/device/UserDefaults.h"
#include "platform/files/FileManager.h"
#include "platform/queue/DispatchQueue.h"
#include "platform/queue/NotificationCenter.h"
#include "platform/system/ResourceBundle.h"
#include "ui/presentation/Texts.h"
#include "ui/presentation/UrlOpener.h"

namespace sweepwright {

class AppWhitelistManager;
class CleanHistoryManager;
class CustomPathManager;
class FileCleanerEngine;
class PathWhitelistManager;
class StorageAnalyzer;
class ThirdPartyAppCacheManager;

namespace localization {
class LanguageManager;
}

namespace ui {

class AppIconStore;

/// What the shell and its screens work with. All of it outlives them.
struct ScreenServices {
    const platform::Device& device;
    platform::FileManager& files;
    platform::UserDefaults& defaults;
    platform::NotificationCenter& notifications;
    platform::MainQueue& mainQueue;
    FileCleanerEngine& engine;
    StorageAnalyzer& storage;
    ThirdPartyAppCacheManager& apps;
    PathWhitelistManager& pathWhitelist;
    AppWhitelistManager& appWhitelist;
    CustomPathManager& customPaths;
    CleanHistoryManager& history;
    localization::LanguageManager& language;
    Texts& texts;
    UrlOpener& opener;
    const platform::ResourceBundle& resources;
    AppIconStore& icons;
};

}  // namespace ui
}  // namespace sweepwright
