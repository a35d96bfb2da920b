#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/Table.h"
#include "platform/text/TextWidth.h"

namespace sweepwright::cli {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

Page pipePage() {
    return {.shown = [](std::string_view cell) { return std::string(cell); }, .ownerOf = {}};
}

Page terminalPage(std::size_t columns) {
    Page page = pipePage();
    page.forPerson = true;
    page.columns = columns;
    return page;
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

const std::string kLongPath = "/var/mobile/Containers/Data/Application/UUID/Library/Caches/a.db";

Table sizes() {
    Table table(
        {{.title = "SIZE", .align = Align::Right}, {.title = "PATH", .holds = Holds::OwnedPath}});
    table.row({"10.00 MB", kLongPath});
    table.row({"1 B", "/x"});
    return table;
}

TEST(Table, AProgramGetsAlignedColumnsInFullAndNoHeadings) {
    EXPECT_EQ(sizes().text(pipePage()), "10.00 MB  " + kLongPath + "\n     1 B  /x\n");
}

TEST(Table, ColumnsAreAlignedByWidthOnTheScreen) {
    Table table({{}, {.align = Align::Right}, {}});
    table.row({"a", "1 B", "x"});
    table.row({"缓存", "10 B", "y z"});
    EXPECT_EQ(table.text(pipePage()), "a      1 B  x\n缓存  10 B  y z\n");
}

TEST(Table, APersonGetsHeadingsAndPathsThatAreCutInTheMiddle) {
    EXPECT_EQ(sizes().text(terminalPage(40)),
              "    SIZE  PATH\n"
              "10.00 MB  /var/mobi…/Library/Caches/a.db\n"
              "     1 B  /x\n");
    EXPECT_EQ(sizes().text(terminalPage(80)),
              "    SIZE  PATH\n"
              "10.00 MB  " +
                  kLongPath + "\n     1 B  /x\n");
}

TEST(Table, WithoutUnicodeTheCutIsAscii) {
    Page page = terminalPage(40);
    page.unicode = false;
    EXPECT_THAT(sizes().text(page), HasSubstr("10.00 MB  /var/mobi...ibrary/Caches/a.db\n"));
}

TEST(Table, NoLineEndsInABlankThatIsNotInACell) {
    Table table({{.title = "A"}, {.title = "B", .align = Align::Right}, {.title = "C"}});
    table.row({"x", "", ""});
    table.row({"longer", "1", ""});
    table.row({"", "", "z "});
    EXPECT_EQ(table.text(pipePage()), "x\nlonger  1\n           z \n");
    EXPECT_EQ(table.text(terminalPage(80)), "A       B  C\nx\nlonger  1\n           z \n");
}

TEST(Table, AColumnIsNoNarrowerThanItsHeading) {
    Table table({{.title = "TEMPORARY"}, {.title = "B"}});
    table.row({"x", "y"});
    EXPECT_EQ(table.text(terminalPage(80)), "TEMPORARY  B\nx          y\n");
}

TEST(Table, APersonDoesNotSeeAColumnInWhichNothingStands) {
    Table table({{.title = "A"}, {.title = "B"}});
    table.row({"", "y"});
    EXPECT_EQ(table.text(terminalPage(80)), "B\ny\n");
    EXPECT_EQ(table.text(pipePage()), "  y\n");
}

TEST(Table, ColumnsMayBeForOneReaderOnly) {
    Table table({{.title = "NAME", .reader = Reader::Person},
                 {.title = "ID"},
                 {.reader = Reader::Program}});
    table.row({"Chat", "com.chat", "Chat"});
    EXPECT_EQ(table.text(terminalPage(80)), "NAME  ID\nChat  com.chat\n");
    EXPECT_EQ(table.text(pipePage()), "com.chat  Chat\n");
}

TEST(Table, APathsOwnerStandsBesideItForAPerson) {
    Page page = terminalPage(80);
    page.ownerOf = [](const std::string& path) {
        return path == kLongPath ? std::optional<std::string>("Chat") : std::nullopt;
    };
    EXPECT_EQ(sizes().text(page),
              "    SIZE  APP   PATH\n"
              "10.00 MB  Chat  " +
                  kLongPath +
                  "\n"
                  "     1 B        /x\n");
    page.forPerson = false;
    EXPECT_EQ(sizes().text(page), sizes().text(pipePage()));
}

TEST(Table, WhereNoPathHasAnOwnerThereIsNoColumnForOne) {
    Page page = terminalPage(80);
    page.ownerOf = [](const std::string&) { return std::nullopt; };
    EXPECT_EQ(sizes().text(page), sizes().text(terminalPage(80)));
}

Table apps() {
    Table table({{.title = "TOTAL", .align = Align::Right},
                 {.title = "CACHES", .align = Align::Right, .spare = 1},
                 {.title = "TEMPORARY", .align = Align::Right, .spare = 2},
                 {.title = "APP", .holds = Holds::Text},
                 {.title = "IDENTIFIER", .holds = Holds::Identifier}});
    table.row({"138 MB", "126 MB", "12 MB", "Lantern Reader", "com.lanternreader.app"});
    table.row({"2 MB", "1 MB", "1 MB", "青云视频", "cn.qingyun.video"});
    return table;
}

TEST(Table, OnANarrowTerminalSpareColumnsGoThenNamesAreCut) {
    EXPECT_EQ(apps().text(terminalPage(80)),
              " TOTAL  CACHES  TEMPORARY  APP             IDENTIFIER\n"
              "138 MB  126 MB      12 MB  Lantern Reader  com.lanternreader.app\n"
              "  2 MB    1 MB       1 MB  青云视频        cn.qingyun.video\n");
    EXPECT_EQ(apps().text(terminalPage(55)),
              " TOTAL  CACHES  APP             IDENTIFIER\n"
              "138 MB  126 MB  Lantern Reader  com.lanternreader.app\n"
              "  2 MB    1 MB  青云视频        cn.qingyun.video\n");
    EXPECT_EQ(apps().text(terminalPage(40)),
              " TOTAL  APP        IDENTIFIER\n"
              "138 MB  Lantern …  com.lanternreader.app\n"
              "  2 MB  青云视频   cn.qingyun.video\n");
}

TEST(Table, AnIdentifierThatHasNoRoomStandsWholeOnALineOfItsOwn) {
    EXPECT_EQ(apps().text(terminalPage(30)),
              " TOTAL  APP\n"
              "  IDENTIFIER\n"
              "138 MB  Lantern Reader\n"
              "  com.lanternreader.app\n"
              "  2 MB  青云视频\n"
              "  cn.qingyun.video\n");
}

TEST(Table, ANameDoesNotTakeThePlaceOfAPath) {
    Table table({{.title = "APP", .holds = Holds::Text}, {.title = "PATH", .holds = Holds::Path}});
    table.row({std::string(60, 'n'), std::string(60, 'p')});
    EXPECT_THAT(linesOf(table.text(terminalPage(47)))[1],
                testing::AllOf(testing::StartsWith(std::string(14, 'n') + "…  "),
                               testing::EndsWith(std::string(20, 'p'))));
}

Table bars() {
    Table table({{.title = "WHAT"}, {.holds = Holds::Bar, .spare = 1}});
    table.row({"half", Share{0.5}});
    table.row({"all", Share{1}});
    table.row({"none", Share{0}});
    table.row({"total", ""});
    return table;
}

TEST(Table, ABarIsAsLongAsThereIsRoom) {
    EXPECT_EQ(bars().text(terminalPage(17)),
              "WHAT\nhalf   █████\nall    ██████████\nnone\ntotal\n");
    EXPECT_EQ(bars().text(terminalPage(11)), "WHAT\nhalf   ██\nall    ████\nnone\ntotal\n");
    EXPECT_EQ(bars().text(terminalPage(10)), "WHAT\nhalf\nall\nnone\ntotal\n");
    EXPECT_EQ(linesOf(bars().text(terminalPage(200)))[2].size(), 7 + 24 * std::string("█").size());
}

TEST(Table, WithoutUnicodeABarIsAscii) {
    Page page = terminalPage(17);
    page.unicode = false;
    EXPECT_EQ(bars().text(page), "WHAT\nhalf   #####\nall    ##########\nnone\ntotal\n");
}

TEST(Table, RemarksAreForAPersonAndTakeAsManyLinesAsTheyNeed) {
    Table table({{.title = "SIZE"}});
    table.section("cookies and web data");
    table.row({"1 B"});
    table.remark("and 3 more");
    EXPECT_EQ(table.text(terminalPage(11)), "SIZE\n\ncookies and\nweb data\n1 B\nand 3 more\n");
    EXPECT_EQ(table.text(pipePage()), "1 B\n");
}

TEST(Table, EveryLineFitsEveryTerminal) {
    for (std::size_t columns = 12; columns < 130; ++columns) {
        Page page = terminalPage(columns);
        page.ownerOf = [](const std::string&) {
            return "👨\u200D👩\u200D👧 Wanderbuch – Karten und Touren";
        };
        Table table = sizes();
        table.section("cookies and web data: 34.20 MB, 63 entries");
        for (const Table& each : {table, apps(), bars()}) {
            for (const std::string& line : linesOf(each.text(page))) {
                EXPECT_LE(platform::displayWidth(line), columns) << line;
                EXPECT_THAT(line, Not(testing::EndsWith(" ")));
            }
        }
    }
}

}  // namespace
}  // namespace sweepwright::cli
