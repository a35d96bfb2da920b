#include "ui/shell/LaunchOptions.h"

#include <QCommandLineParser>
#include <string_view>

#include "launch/AppOptions.h"

namespace sweepwright::ui {

namespace {

const QString kDeviceRoot = QStringLiteral("device-root");
const QString kHome = QStringLiteral("home");
const QString kTmp = QStringLiteral("tmp");
const QString kIdiom = QStringLiteral("idiom");
const QString kOsVersion = QStringLiteral("os-version");
const QString kAppearance = QStringLiteral("appearance");
const QString kVerbose = QStringLiteral("verbose");
const QString kHelp = QStringLiteral("help");
const QString kVersion = QStringLiteral("version");

QString latin1(std::string_view text) {
    return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
}

void addOptions(QCommandLineParser& parser) {
    for (const launch::AppOption& option : launch::appOptions()) {
        QStringList names{latin1(option.name)};
        if (!option.letter.empty()) names.prepend(latin1(option.letter));
        parser.addOption({names, latin1(option.help), latin1(option.value)});
    }
}

std::optional<std::string> text(const QCommandLineParser& parser, const QString& name) {
    if (!parser.isSet(name)) return std::nullopt;
    return parser.value(name).toStdString();
}

QString wrongValue(const QString& name, const QString& value) {
    return QStringLiteral("--%1: '%2' is not understood").arg(name, value);
}

// Takes the options with few values; an error is the line to say.
std::optional<QString> takeChoices(const QCommandLineParser& parser, LaunchOptions& options) {
    const QString idiom = parser.value(kIdiom);
    if (idiom == QLatin1String("iphone")) {
        options.global.idiom = platform::Idiom::Phone;
    } else if (idiom == QLatin1String("ipad")) {
        options.global.idiom = platform::Idiom::Pad;
    } else if (parser.isSet(kIdiom)) {
        return wrongValue(kIdiom, idiom);
    }
    const QString appearance = parser.value(kAppearance);
    if (appearance == QLatin1String("light")) {
        options.style = Appearance::Style::Light;
    } else if (appearance == QLatin1String("dark")) {
        options.style = Appearance::Style::Dark;
    } else if (parser.isSet(kAppearance)) {
        return wrongValue(kAppearance, appearance);
    }
    if (parser.isSet(kOsVersion)) {
        const QStringList parts = parser.value(kOsVersion).split(QLatin1Char('.'));
        bool major = false;
        bool minor = true;
        const platform::OperatingSystemVersion version{
            parts.first().toInt(&major), parts.size() > 1 ? parts[1].toInt(&minor) : 0};
        if (!major || !minor) return wrongValue(kOsVersion, parser.value(kOsVersion));
        options.osVersion = version;
    }
    return std::nullopt;
}

}  // namespace

std::expected<LaunchOptions, QString> parseLaunchOptions(const QStringList& words) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("A storage cleaner for iPhone and iPad devices."));
    addOptions(parser);
    if (!parser.parse(QStringList{QStringLiteral("sweepwright")} + words)) {
        return std::unexpected(parser.errorText());
    }
    if (!parser.positionalArguments().isEmpty()) {
        return std::unexpected(
            QStringLiteral("'%1' is not understood").arg(parser.positionalArguments().first()));
    }
    LaunchOptions options;
    if (parser.isSet(kHelp)) {
        options.kind = LaunchOptions::Kind::Help;
        options.helpText = parser.helpText();
        return options;
    }
    if (parser.isSet(kVersion)) options.kind = LaunchOptions::Kind::Version;
    options.global.deviceRoot = text(parser, kDeviceRoot);
    options.global.home = text(parser, kHome);
    options.global.temporaryDirectory = text(parser, kTmp);
    options.global.verbose = parser.isSet(kVerbose);
    if (const auto wrong = takeChoices(parser, options)) return std::unexpected(*wrong);
    return options;
}

}  // namespace sweepwright::ui
