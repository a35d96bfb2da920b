// Any bytes as a string table: what reads is text, and reads back equal from every form.
#include <string>

#include "fuzz/Target.h"
#include "platform/PropertyList.h"
#include "platform/StringsTable.h"
#include "platform/Utf8.h"

namespace {

using sweepwright::fuzz::require;
using sweepwright::platform::firstUtf8Character;
using sweepwright::platform::PropertyList;
using sweepwright::platform::StringsTable;

/// `text` in quotes.
std::string quoted(std::string_view text) {
    std::string out = "\"";
    for (const char byte : text) {
        if (byte == '"' || byte == '\\') out += '\\';
        if (byte == '\0') {
            out += "\\U0000";
        } else {
            out += byte;
        }
    }
    return out + "\"";
}

std::string written(const StringsTable& table) {
    // The comment keeps the file's beginning one that no other form has.
    std::string out = "/* table */\n";
    for (const auto& [key, text] : table.entries())
        out += quoted(key) + " = " + quoted(text) + ";\n";
    return out;
}

void appendUnit(std::string& out, std::uint32_t unit, bool bigEndian) {
    const char high = static_cast<char>(unit >> 8U);
    const char low = static_cast<char>(unit & 0xFFU);
    out += bigEndian ? high : low;
    out += bigEndian ? low : high;
}

/// UTF-8 as UTF-16 with its mark.
std::string inUtf16(std::string_view utf8, bool bigEndian) {
    std::string out;
    appendUnit(out, 0xFEFF, bigEndian);
    while (!utf8.empty()) {
        const auto next = firstUtf8Character(utf8);
        require(next.bytes > 0, "keys and texts are UTF-8");
        const auto code = static_cast<std::uint32_t>(next.code);
        if (code > 0xFFFF) {
            appendUnit(out, 0xD800 + ((code - 0x10000) >> 10U), bigEndian);
            appendUnit(out, 0xDC00 + ((code - 0x10000) & 0x3FFU), bigEndian);
        } else {
            appendUnit(out, code, bigEndian);
        }
        utf8.remove_prefix(next.bytes);
    }
    return out;
}

void expectSame(const std::string& file, const StringsTable& table, const char* broken) {
    if (file.size() > StringsTable::kMaxBytes) return;
    const auto read = StringsTable::parse(file);
    require(read.has_value() && read->problems().empty(), broken);
    require(read->entries() == table.entries(), broken);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto table = StringsTable::parse(sweepwright::fuzz::asText(data, size));
    if (!table) return 0;
    require(table->problems().size() <= StringsTable::kMaxProblems + 1, "problems are limited");
    bool compilable = true;
    PropertyList::Dictionary dictionary;
    for (const auto& [key, text] : table->entries()) {
        require(sweepwright::platform::isUtf8(key), "keys are UTF-8");
        require(sweepwright::platform::isUtf8(text), "texts are UTF-8");
        require(table->find(key) != nullptr && *table->find(key) == text, "a key finds its text");
        compilable = compilable && !(key + text).contains('\0');
        dictionary.set(key, text);
    }
    const std::string plain = written(*table);
    expectSame(plain, *table, "a table survives being written");
    expectSame(inUtf16(plain, true), *table, "a table survives UTF-16, big end first");
    expectSame(inUtf16(plain, false), *table, "a table survives UTF-16, little end first");
    if (compilable) {
        const PropertyList list(std::move(dictionary));
        expectSame(list.toBinary(), *table, "a table survives being compiled");
    }
    return 0;
}
