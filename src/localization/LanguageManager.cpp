#include "localization/LanguageManager.h"

#include <tuple>

#include "platform/device/Device.h"
#include "platform/device/UserDefaults.h"
#include "platform/log/Log.h"
#include "platform/queue/NotificationCenter.h"

namespace sweepwright::localization {
namespace {

using platform::PropertyList;

constexpr std::string_view kChinese = "zh-Hans";
constexpr std::string_view kEnglish = "en";

constexpr std::string_view kLanguageKey = "AppLanguage";
constexpr std::string_view kPreferredLanguagesKey = "AppleLanguages";
constexpr std::string_view kTable = "Localizable";

constexpr std::array<SupportedLanguage, 2> kSupported{
    {{kChinese, "中文简体", "中文简体"}, {kEnglish, "English", "English"}}};

std::string_view languageFor(const std::vector<std::string>& preferred) {
    return !preferred.empty() && preferred.front().starts_with("zh") ? kChinese : kEnglish;
}

}  // namespace

LanguageManager::LanguageManager(platform::UserDefaults& defaults,
                                 platform::NotificationCenter& notifications,
                                 platform::ResourceBundle mainBundle,
                                 const std::vector<std::string>& preferredLanguages)
    : defaults_(defaults),
      notifications_(notifications),
      mainBundle_(std::move(mainBundle)),
      currentBundle_(mainBundle_) {
    const auto stored = defaults_.string(kLanguageKey);
    // A language that can't be stored is logged and holds for this run.
    std::ignore = setLanguage(stored ? std::string_view(*stored) : languageFor(preferredLanguages));
}

LanguageManager& LanguageManager::sharedManager() {
    static LanguageManager manager(
        platform::UserDefaults::standard(), platform::NotificationCenter::defaultCenter(),
        platform::ResourceBundle::main(), platform::Device::current().preferredLanguages());
    return manager;
}

std::string LanguageManager::currentLanguageCode() const {
    return currentLanguage_.empty() ? std::string(kChinese) : currentLanguage_;
}

std::string LanguageManager::currentLanguageName() const {
    return std::string(kSupported[currentLanguage_ == kEnglish ? 1 : 0].name);
}

const std::array<SupportedLanguage, 2>& LanguageManager::supportedLanguages() {
    return kSupported;
}

platform::Result<> LanguageManager::setLanguage(std::optional<std::string_view> code) {
    if (!code || (!currentLanguage_.empty() && *code == currentLanguage_)) return {};
    currentLanguage_ = *code == kEnglish ? kEnglish : kChinese;
    auto stored = store();
    if (!stored) platform::log("⚠️ 语言设置未能保存: {}", stored.error().description);
    currentBundle_ = mainBundle_.folderResource(currentLanguage_, "lproj").value_or(mainBundle_);
    notifications_.post(kLanguageChangedNotification);
    return stored;
}

platform::Result<> LanguageManager::store() const {
    // The store would set a damaged file aside and begin a new one, without all that protects.
    if (auto damage = defaults_.damage()) return std::unexpected(*std::move(damage));
    return defaults_.updateAll([this](PropertyList::Dictionary& all) {
        all.set(std::string(kLanguageKey), currentLanguage_);
        all.set(std::string(kPreferredLanguagesKey), PropertyList::Array{currentLanguage_});
    });
}

std::string LanguageManager::localizedStringForKey(std::string_view key) const {
    return currentBundle_.localizedString(key, "", kTable);
}

}  // namespace sweepwright::localization
