#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/Error.h"
#include "platform/system/ResourceBundle.h"

namespace sweepwright::platform {
class NotificationCenter;
class UserDefaults;
}  // namespace sweepwright::platform

namespace sweepwright::localization {

/// Posted, without user info, after every change of language.
inline constexpr std::string_view kLanguageChangedNotification = "LanguageChangedNotification";

/// A language that the interface speaks.
struct SupportedLanguage {
    std::string_view code;
    std::string_view name;
    std::string_view nativeName;  ///< in the language itself; what a list offers
};

/// The interface's own language, whatever the system's is, and the texts in it.
///
/// Used on the main thread; localizedStringForKey() may be called on any thread while no other
/// changes the language.
class LanguageManager {
  public:
    /// Takes the language stored under "AppLanguage"; with none stored Simplified Chinese if the
    /// first of `preferredLanguages` is any Chinese, else English. Stores it and posts, as
    /// setLanguage() does. The references must outlive this.
    LanguageManager(platform::UserDefaults& defaults, platform::NotificationCenter& notifications,
                    platform::ResourceBundle mainBundle,
                    const std::vector<std::string>& preferredLanguages);

    /// The manager of the device's user defaults and the program's resources, made on first use.
    static LanguageManager& sharedManager();

    /// The code of the active language: "zh-Hans" or "en".
    [[nodiscard]] const std::string& currentLanguage() const { return currentLanguage_; }
    /// The folder of the active language; the main bundle when that folder is missing.
    [[nodiscard]] const platform::ResourceBundle& currentBundle() const { return currentBundle_; }

    /// currentLanguage(), or "zh-Hans" when none is set.
    [[nodiscard]] std::string currentLanguageCode() const;
    /// "English" or "中文简体".
    [[nodiscard]] std::string currentLanguageName() const;
    /// Chinese, then English.
    static const std::array<SupportedLanguage, 2>& supportedLanguages();

    /// Changes the language, stores it under "AppLanguage" and "AppleLanguages", and posts
    /// kLanguageChangedNotification on this thread. None and the current code change nothing; a
    /// code that is not supported means Simplified Chinese. The language changes even when it can't
    /// be stored; the error then says why.
    platform::Result<> setLanguage(std::optional<std::string_view> code);

    /// The text under `key` in the active language; `key` itself when there is none.
    [[nodiscard]] std::string localizedStringForKey(std::string_view key) const;

  private:
    platform::Result<> store() const;

    platform::UserDefaults& defaults_;
    platform::NotificationCenter& notifications_;
    platform::ResourceBundle mainBundle_;
    platform::ResourceBundle currentBundle_;
    std::string currentLanguage_;
};

}  // namespace sweepwright::localization
