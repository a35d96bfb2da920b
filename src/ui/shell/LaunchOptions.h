#pragma once

#include <QString>
#include <QStringList>
#include <expected>
#include <optional>

#include "launch/GlobalOptions.h"
#include "platform/device/Device.h"
#include "ui/kit/Appearance.h"

namespace sweepwright::ui {

/// What a person may say when starting the app.
struct LaunchOptions {
    enum class Kind { Run, Help, Version };

    Kind kind = Kind::Run;
    QString helpText;
    launch::GlobalOptions global;
    std::optional<platform::OperatingSystemVersion> osVersion;
    Appearance::Style style = Appearance::Style::Desktop;
};

/// Understands the words after the program's name. An error is one line for a person.
std::expected<LaunchOptions, QString> parseLaunchOptions(const QStringList& words);

}  // namespace sweepwright::ui
