#include "ui/presentation/Texts.h"

#include <utility>

namespace sweepwright::ui {

Texts::Texts(Lookup lookup, platform::NotificationCenter& notifications)
    : lookup_(std::move(lookup)),
      subscription_(notifications.observe(std::string(kLanguageChanged),
                                          [this](const auto&) { Q_EMIT changed(); })) {}

QString Texts::operator()(std::string_view key) const {
    return QString::fromStdString(lookup_(key));
}

QString Texts::operator()(std::string_view key,
                          std::initializer_list<localization::FormatArgument> arguments) const {
    return QString::fromStdString(localization::formatLocalized(lookup_(key), arguments));
}

}  // namespace sweepwright::ui
