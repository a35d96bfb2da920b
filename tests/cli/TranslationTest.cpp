// The command line in Chinese: on a terminal whose locale asks for it, and nowhere else.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/Command.h"
#include "cli/ProgramDescription.h"
#include "cli/Sweepctl.h"
#include "cli/Translation.h"
#include "engine/Categories.h"
#include "engine/CleanObserver.h"
#include "platform/system/ResourceBundle.h"
#include "platform/system/StringsTable.h"
#include "platform/text/TextWidth.h"

namespace sweepwright::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using Texts = std::set<std::string, std::less<>>;
using Words = std::vector<std::string>;

const std::string kLiteral = R"re("(?:[^"\\]|\\.)*")re";

platform::StringsTable chineseTable() {
    const auto bytes =
        platform::ResourceBundle::main().readFile("zh-Hans.lproj/CommandLine.strings");
    EXPECT_TRUE(bytes.has_value());
    return platform::StringsTable::parse(bytes.value_or("")).value();
}

std::string withoutEscapes(const std::string& literal) {
    const std::string withLineBreaks = std::regex_replace(literal, std::regex(R"(\\n)"), "\n");
    return std::regex_replace(withLineBreaks, std::regex(R"(\\(.))"), "$1");
}

/// The text of one string literal, or of some that stand side by side.
std::string joined(const std::string& literals) {
    const std::regex literal(kLiteral);
    std::string text;
    for (std::sregex_iterator at(literals.begin(), literals.end(), literal), end; at != end; ++at) {
        const std::string quoted = at->str();
        text += withoutEscapes(quoted.substr(1, quoted.size() - 2));
    }
    return text;
}

/// The texts in a source of the command line that stand where `place`, a regular expression, ends.
void collect(Texts& texts, const std::string& source, const std::string& place) {
    const std::regex texted(place + "((?:" + kLiteral + R"(\s*)+)(?:: ((?:)" + kLiteral +
                            R"(\s*)+))?)");
    for (std::sregex_iterator at(source.begin(), source.end(), texted), end; at != end; ++at) {
        texts.insert(joined((*at)[1]));
        if ((*at)[2].matched) texts.insert(joined((*at)[2]));
    }
}

/// Every text that the sources translate.
Texts translatedTexts() {
    Texts texts;
    for (const auto& file : std::filesystem::directory_iterator(CLI_SOURCES)) {
        if (!file.is_regular_file()) continue;
        std::ifstream stream(file.path());
        const std::string source(std::istreambuf_iterator<char>(stream), {});
        collect(texts, source, R"((?:told|translated|counted)\([^";,]*)");
        collect(texts, source, R"(translated\([^";,]*"[^"]*", )");
        collect(texts, source, R"(counted\([^"]*"[^"]*", )");
        if (file.path().filename() == "Wording.h") collect(texts, source, R"(k\w+ =\s*)");
    }
    return texts;
}

/// Every text of the commands' descriptions.
Texts describingTexts() {
    Texts texts;
    for (const cli::Command& command : cli::allCommands()) {
        texts.insert({command.group, command.summary});
        for (const cli::Positional& positional : command.positionals)
            texts.insert(positional.help);
        for (const cli::Option& option : command.options)
            texts.insert(option.help);
    }
    return texts;
}

Texts placeholdersOf(const std::string& text) {
    const std::regex placeholder(R"(\{\d*[^}]*\})");
    Texts found;
    int next = 0;
    for (std::sregex_iterator at(text.begin(), text.end(), placeholder), end; at != end; ++at)
        found.insert(at->str() == "{}" ? "{" + std::to_string(next++) + "}" : at->str());
    return found;
}

TEST(Translation, EveryTextOfTheSourcesHasOne) {
    const platform::StringsTable table = chineseTable();
    Texts texts = translatedTexts();
    EXPECT_GT(texts.size(), 100U) << "the sources were not found";
    texts.merge(describingTexts());
    for (const cli::GlobalOption& option : cli::globalOptions())
        texts.insert(option.help);
    for (const cli::ExitStatus& status : cli::exitStatuses())
        texts.emplace(status.meaning);
    texts.insert(cli::programPurpose());
    for (const auto& category : categories())
        texts.emplace(category.label);
    for (int reason = 0; !keptReasonName(static_cast<KeptReason>(reason)).empty(); ++reason)
        texts.emplace(keptReasonName(static_cast<KeptReason>(reason)));
    for (const std::string& text : texts)
        EXPECT_NE(table.find(text), nullptr) << text;
}

TEST(Translation, TheTableIsWithoutABrokenLineOrAKeyTwice) {
    const platform::StringsTable table = chineseTable();
    for (const auto& problem : table.problems())
        ADD_FAILURE() << "line " << problem.line << ": " << problem.why;
}

TEST(Translation, PlaceholdersAreThoseOfTheEnglishText) {
    const platform::StringsTable table = chineseTable();
    for (const auto& [english, chinese] : table.entries())
        EXPECT_EQ(placeholdersOf(chinese), placeholdersOf(english)) << english;
}

TEST(Translation, TheTableIsInChinese) {
    const platform::StringsTable table = chineseTable();
    for (const auto& [english, chinese] : table.entries()) {
        const bool hasChinese = std::ranges::any_of(
            platform::glyphsOf(chinese), [](const auto& glyph) { return glyph.columns == 2; });
        EXPECT_TRUE(hasChinese) << english << ": " << chinese;
    }
}

TEST(Translation, ABrokenTranslationFallsBackToEnglish) {
    const std::string text = "freed 10 B";
    EXPECT_EQ(cli::told("freed {}", "10 B"), text);
}

/// A person on a terminal with a locale.
class Person {
  public:
    explicit Person(const std::string& locale) {
        sweepctl_.setVariable("LANG", locale);
        sweepctl_.setTerminal(TerminalStreams::all());
        sweepctl_.device().file("/var/mobile/Library/Caches/a", 2000);
    }
    Sweepctl& sweepctl() { return sweepctl_; }
    std::string reads(const Words& words) { return sweepctl_.run(words).screen; }

  private:
    Sweepctl sweepctl_;
};

TEST(Chinese, IsWhatAChineseLocaleReads) {
    Person person("zh_CN.UTF-8");
    EXPECT_THAT(person.reads({"scan"}),
                AllOf(HasSubstr("类别"), HasSubstr("缓存 cache "), HasSubstr("总计")));
    EXPECT_THAT(person.reads({"--help"}),
                AllOf(HasSubstr("用法： sweepctl"), HasSubstr("选项"), Not(HasSubstr("Usage"))));
    EXPECT_THAT(person.reads({"clean", "cache", "--help"}), HasSubstr("不询问，直接执行"));
    EXPECT_THAT(person.reads({"clean", "cahce"}), HasSubstr("须是"));
    EXPECT_THAT(person.reads({"clean", "cache", "--yes"}), HasSubstr("已释放"));
    EXPECT_THAT(person.reads({"storage"}), HasSubstr("空闲"));
}

TEST(Chinese, AsksInChinese) {
    Person person("zh_CN.UTF-8");
    Process process(person.sweepctl().options({"clean", "cache"}));
    process.waitForText("从缓存中删除");
    process.type("n\n");
    const ProcessResult result = process.wait();
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.screen, HasSubstr("没有删除任何内容"));
    EXPECT_TRUE(person.sweepctl().device().exists("/var/mobile/Library/Caches/a"));
}

TEST(Chinese, IsNotForOtherLocales) {
    for (const char* locale : {"en_US.UTF-8", "C.UTF-8", "C", "", "zhuang", "zh_CN.GB18030"})
        EXPECT_THAT(Person(locale).reads({"scan"}), HasSubstr("CATEGORY")) << locale;
}

TEST(Chinese, TheVariablesOfTheLocaleCountInTheirOrder) {
    Person person("zh_CN.UTF-8");
    person.sweepctl().setVariable("LC_MESSAGES", "en_US.UTF-8");
    EXPECT_THAT(person.reads({"scan"}), HasSubstr("CATEGORY"));
    person.sweepctl().setVariable("LC_ALL", "zh_TW.UTF-8");
    EXPECT_THAT(person.reads({"scan"}), HasSubstr("类别"));
}

TEST(Chinese, PipesAndDocumentsAreEnglish) {
    Person person("zh_CN.UTF-8");
    EXPECT_THAT(person.reads({"scan", "--json"}), HasSubstr("\"totalSize\""));
    EXPECT_THAT(person.reads({"clean", "cahce", "--json"}), HasSubstr("must be one of"));
    person.sweepctl().setTerminal(TerminalStreams::none());
    const ProcessResult scan = person.sweepctl().run({"scan"});
    EXPECT_THAT(scan.output, HasSubstr("total"));
    EXPECT_THAT(person.sweepctl().run({"clean", "cahce"}).error, HasSubstr("must be one of"));
    TerminalStreams onlyError;
    onlyError.error = true;
    person.sweepctl().setTerminal(onlyError);
    EXPECT_THAT(person.sweepctl().run({"clean", "cache", "--yes"}).output, HasSubstr("freed"));
}

}  // namespace
}  // namespace sweepwright::test
