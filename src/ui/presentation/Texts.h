#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>

#include "localization/LocalizedFormat.h"
#include "platform/queue/NotificationCenter.h"

namespace sweepwright::ui {

/// The texts of the screens by key, in the language of the moment. On changed() a screen reads its
/// texts again.
class Texts : public QObject {
    Q_OBJECT

  public:
    /// Answers the text for a key, the key itself when there is none.
    using Lookup = std::function<std::string(std::string_view key)>;

    /// The notification that announces another language.
    static constexpr std::string_view kLanguageChanged = "LanguageChangedNotification";

    Texts(Lookup lookup, platform::NotificationCenter& notifications);

    [[nodiscard]] QString operator()(std::string_view key) const;
    /// The text for a key with its specifiers filled in.
    [[nodiscard]] QString operator()(
        std::string_view key, std::initializer_list<localization::FormatArgument> arguments) const;

  Q_SIGNALS:
    void changed();

  private:
    Lookup lookup_;
    platform::NotificationCenter::Subscription subscription_;
};

}  // namespace sweepwright::ui
