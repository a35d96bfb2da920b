#pragma once

#include "platform/Device.h"
#include "platform/DispatchQueue.h"
#include "platform/FileManager.h"
#include "platform/NotificationCenter.h"
#include "platform/UserDefaults.h"
#include "ui/presentation/Texts.h"
#include "ui/presentation/UrlOpener.h"

namespace sweepwright::ui {

/// What the shell and its screens work with. All of it outlives them.
struct AppServices {
    const platform::Device& device;
    platform::FileManager& files;
    platform::UserDefaults& defaults;
    platform::NotificationCenter& notifications;
    platform::MainQueue& mainQueue;
    Texts& texts;
    UrlOpener& opener;
};

}  // namespace sweepwright::ui
