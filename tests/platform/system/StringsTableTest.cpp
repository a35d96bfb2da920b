#include <ctime>
#include <map>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "platform/system/StringsTable.h"

namespace sweepwright::platform {
namespace {

using namespace std::string_view_literals;
using Entries = std::map<std::string, std::string, std::less<>>;

StringsTable parsed(std::string_view bytes) {
    auto table = StringsTable::parse(bytes);
    EXPECT_TRUE(table.has_value()) << table.error().description;
    return table.value_or(StringsTable());
}

Entries entriesOf(std::string_view bytes) {
    const StringsTable table = parsed(bytes);
    EXPECT_TRUE(table.problems().empty())
        << "line " << table.problems().front().line << ": " << table.problems().front().why;
    return table.entries();
}

std::vector<std::size_t> brokenLines(const StringsTable& table) {
    std::vector<std::size_t> lines;
    for (const auto& problem : table.problems())
        lines.push_back(problem.line);
    return lines;
}

TEST(StringsTable, EntriesAreRead) {
    const StringsTable table = parsed("\"Tab Home\" = \"首页\";\n\"OK\"=\"好\";");
    ASSERT_NE(table.find("Tab Home"), nullptr);
    EXPECT_EQ(*table.find("Tab Home"), "首页");
    EXPECT_EQ(*table.find("OK"), "好");
    EXPECT_EQ(table.find("ok"), nullptr);
    EXPECT_EQ(table.entries().size(), 2U);
}

TEST(StringsTable, AnEmptyFileIsAnEmptyTable) {
    EXPECT_TRUE(entriesOf("").empty());
    EXPECT_TRUE(entriesOf(" \r\n\t").empty());
    EXPECT_TRUE(entriesOf("\xEF\xBB\xBF").empty());
    EXPECT_TRUE(entriesOf("// nothing here").empty());
}

TEST(StringsTable, CommentsMayStandAnywhereBetweenWords) {
    EXPECT_EQ(entriesOf("/* one\n two */ \"a\" /* \"x\" = \"y\"; */ = // =\n \"1\" /**/ ; // end\r"
                        "b/**/=/***/c;//"),
              (Entries{{"a", "1"}, {"b", "c"}}));
}

TEST(StringsTable, CommentMarksWithinQuotesAreText) {
    EXPECT_EQ(entriesOf("\"http://a/*b\" = \"// no /* comment */\";"),
              (Entries{{"http://a/*b", "// no /* comment */"}}));
}

TEST(StringsTable, EscapesAreUndone) {
    EXPECT_EQ(entriesOf(R"("k\"1" = "a\nb\tc\rd\\e\"f\'g";)"),
              (Entries{{"k\"1", "a\nb\tc\rd\\e\"f'g"}}));
    EXPECT_EQ(entriesOf(R"(k = "\a\b\f\v\q\;";)"), (Entries{{"k", "\a\b\f\vq;"}}));
    EXPECT_EQ(entriesOf(R"(k = "\U6e05\u7406\U0041B";)"), (Entries{{"k", "清理AB"}}));
    EXPECT_EQ(entriesOf(R"(k = "\UD83D\UDD12 \ud83d\udd12";)"), (Entries{{"k", "🔒 🔒"}}));
    EXPECT_EQ(entriesOf("k = \"a\\\nb\";"), (Entries{{"k", "a\nb"}}));
}

TEST(StringsTable, ALoneSurrogateBecomesTheReplacementCharacter) {
    EXPECT_EQ(entriesOf(R"(k = "\uD83Dx";)"), (Entries{{"k", "\uFFFDx"}}));
    EXPECT_EQ(entriesOf(R"(k = "\uD83D\u0041";)"), (Entries{{"k", "\uFFFDA"}}));
    EXPECT_EQ(entriesOf(R"(k = "\uDD12";)"), (Entries{{"k", "\uFFFD"}}));
}

TEST(StringsTable, KeysAndTextsMayStandWithoutQuotes) {
    EXPECT_EQ(entriesOf("CFBundleName = Sweepwright;\nNSKey-2.a_b$:/c = 1.0;"),
              (Entries{{"CFBundleName", "Sweepwright"}, {"NSKey-2.a_b$:/c", "1.0"}}));
}

TEST(StringsTable, AKeyAloneIsItsOwnText) {
    EXPECT_EQ(entriesOf("\"Done\";\nCancel;"), (Entries{{"Done", "Done"}, {"Cancel", "Cancel"}}));
}

TEST(StringsTable, ATextMayGoOverSeveralLines) {
    EXPECT_EQ(entriesOf("\"a\" = \"one\ntwo\";\n\"b\" = \"3\";"),
              (Entries{{"a", "one\ntwo"}, {"b", "3"}}));
}

TEST(StringsTable, AByteOrderMarkIsSkipped) {
    EXPECT_EQ(entriesOf("\xEF\xBB\xBF\"key\" = \"清🔒!\";"), (Entries{{"key", "清🔒!"}}));
}

// --- What is broken ---

TEST(StringsTable, ABrokenLineCostsThatLineOnly) {
    const std::vector<std::string> broken{"\"k\" \"no equals\";",
                                          "\"k\" = ;",
                                          "\"k\" = \"no semicolon\"",
                                          "\"k\" =",
                                          "= \"no key\";",
                                          "\"k\" = \"open;",
                                          "\"open = 1;",
                                          "k = \"\\u12G4\";",
                                          "k = \"\\U12\";",
                                          "\"k\" = \"\xFF\";",
                                          "\"\xC3(\" = \"v\";",
                                          "; ;",
                                          "}",
                                          "/* open",
                                          "清 = 1;",
                                          "k = /* open",
                                          "k = 'v';"};
    for (const std::string& line : broken) {
        const StringsTable table =
            parsed("\"a\" = \"1\";\n" + line + "\n\"b\" = \"2\";\n\"c\" = \"3\";\n");
        EXPECT_EQ(table.entries(), (Entries{{"a", "1"}, {"b", "2"}, {"c", "3"}})) << line;
        EXPECT_EQ(brokenLines(table), std::vector<std::size_t>{2}) << line;
    }
}

TEST(StringsTable, ProblemsNameTheirLineAndCause) {
    const StringsTable table = parsed("a = 1;\r\n\r\nb 2;\r/* x\n */ c = 3; d\n\n  e = \"\\u\";\n");
    EXPECT_EQ(table.entries(), (Entries{{"a", "1"}, {"c", "3"}}));
    EXPECT_EQ(table.problems(), (std::vector<StringsTable::Problem>{
                                    {3, "no \"=\" after the key"},
                                    {5, "no \"=\" after the key"},
                                    {7, "an escape without its four hexadecimal digits"}}));
}

TEST(StringsTable, TheLaterOfTwoEqualKeysHoldsAndIsReported) {
    const StringsTable table = parsed("a = 1;\nb = 2;\na = 3;\n");
    EXPECT_EQ(table.entries(), (Entries{{"a", "3"}, {"b", "2"}}));
    EXPECT_EQ(brokenLines(table), std::vector<std::size_t>{3});
}

TEST(StringsTable, ATableCutShortAnywhereKeepsItsWholeEntries) {
    const std::string whole = "/* c */ \"a\" = \"x\\u6e05\";\nb = 2; // d\n\"e\" = \"f\";";
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const StringsTable table = parsed(std::string_view(whole).substr(0, length));
        EXPECT_EQ(table.entries().count("a"), whole.find('\n') <= length ? 1U : 0U) << length;
        EXPECT_EQ(table.entries().count("e"), 0U) << length;
    }
}

TEST(StringsTable, AFileThatIsNoTableIsGivenUpAfterSoManyProblems) {
    // Each line opens what the whole rest closes: looked at to the end for every line, this would
    // take hours.
    for (const char* const line : {"x /*\n", "x = \"\\\"\n", "/*\n", "\\\n"}) {
        std::string text = "a = 1;\n";
        while (text.size() < StringsTable::kMaxBytes - 100)
            text += line;
        text += "*/";
        // Of the processor, not of the clock on the wall: others may be at work, too.
        const std::clock_t start = std::clock();
        const StringsTable table = parsed(text);
        EXPECT_LT(std::clock() - start, 30 * CLOCKS_PER_SEC) << line;
        EXPECT_EQ(table.entries(), (Entries{{"a", "1"}}));
        EXPECT_LE(table.problems().size(), StringsTable::kMaxProblems + 1);
    }
}

TEST(StringsTable, AFileOfAnotherFormHasProblemsAndNoEntries) {
    for (const std::string_view file :
         {"\xFF\xFEk\0=\0"
          "1\0;\0\n\0"sv,
          "bplist00\xD1\x01\x02QkQv"sv, "<?xml version=\"1.0\"?>\n<plist><dict/></plist>\n"sv}) {
        const StringsTable table = parsed(file);
        EXPECT_TRUE(table.entries().empty());
        EXPECT_FALSE(table.problems().empty());
    }
}

TEST(StringsTable, AFileBeyondTheLimitIsRefusedUnread) {
    const auto table = StringsTable::parse(std::string(StringsTable::kMaxBytes + 1, ' '));
    ASSERT_FALSE(table.has_value());
    EXPECT_EQ(table.error().domain, kFormatErrorDomain);
}

RC_GTEST_PROP(StringsTable, AnyBytesAreReadWithoutHarm, (const std::string& bytes)) {
    for (const char* const before : {"", "\"a\" = \"", "/*", "\xEF\xBB\xBF", "a = \"\\u"}) {
        const auto table = StringsTable::parse(before + bytes);
        if (!table) RC_ASSERT(table.error().domain == kFormatErrorDomain);
    }
}

RC_GTEST_PROP(StringsTable, AnyTextWrittenWithEscapesReadsBack,
              (const std::map<std::string, std::string>& texts)) {
    const auto quoted = [](const std::string& text) {
        std::string out = "\"";
        for (const char c : text) {
            if (static_cast<unsigned char>(c) >= 0x80 || c == '\0') continue;
            if (c == '"' || c == '\\') out += '\\';
            out += c;
        }
        return out + "\"";
    };
    const auto ascii = [](std::string text) {
        std::erase_if(text, [](char c) { return static_cast<unsigned char>(c) >= 0x80 || c == 0; });
        return text;
    };
    std::string written;
    Entries expected;
    for (const auto& [key, text] : texts) {
        written += quoted(key) + " = " + quoted(text) + ";\n";
        expected[ascii(key)] = ascii(text);
    }
    RC_ASSERT(StringsTable::parse(written).value().entries() == expected);
}

}  // namespace
}  // namespace sweepwright::platform
