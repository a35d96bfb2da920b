#include <string>

#include "cli/Command.h"
#include "cli/Context.h"
#include "cli/ReadableDefaults.h"
#include "cli/Text.h"
#include "localization/LanguageManager.h"

namespace sweepwright::cli {

namespace {

using localization::LanguageManager;

std::vector<std::string> languageCodes() {
    std::vector<std::string> codes;
    for (const auto& language : LanguageManager::supportedLanguages())
        codes.emplace_back(language.code);
    return codes;
}

Outcome language(Context& context, const Call& call) {
    if (auto readable = requireReadableDefaults(); !readable) return readable;
    LanguageManager& manager = LanguageManager::sharedManager();
    if (const auto& words = call.words("CODE"); !words.empty())
        if (auto set = manager.setLanguage(words.front()); !set) return failed(set.error());
    context.output().document(
        Json{{"code", manager.currentLanguageCode()}, {"name", manager.currentLanguageName()}});
    context.output().line(manager.currentLanguageCode() + "  " + manager.currentLanguageName());
    return {};
}

Outcome text(Context& context, const Call& call) {
    if (auto readable = requireReadableDefaults(); !readable) return readable;
    const LanguageManager& manager = LanguageManager::sharedManager();
    Json document = Json::object();
    for (const std::string& key : call.words("KEY")) {
        const std::string found = manager.localizedStringForKey(key);
        document[replacingBadBytes(key)] = replacingBadBytes(found);
        context.output().line(context.output().shown(found));
    }
    context.output().document(document);
    return {};
}

}  // namespace

void addLanguageCommands(Commands& commands) {
    constexpr const char* kGroup = "Language";
    commands.push_back(
        {.words = "language",
         .group = kGroup,
         .summary = "show or set the app's language",
         .positionals =
             {{.name = "CODE", .help = "one of", .optional = true, .choices = languageCodes()}},
         .examples = {"sweepctl language en"},
         .run = language});
    commands.push_back({.words = "text",
                        .group = kGroup,
                        .summary = "look texts up in the current language",
                        .positionals = {{.name = "KEY", .help = "keys of texts", .many = true}},
                        .run = text});
}

}  // namespace sweepwright::cli
