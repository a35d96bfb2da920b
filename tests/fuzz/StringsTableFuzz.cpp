// Any bytes as a string table: what reads is text, and reads back equal.
#include <string>

#include "fuzz/Target.h"
#include "platform/system/StringsTable.h"
#include "platform/text/Utf8.h"

namespace {

using sweepwright::fuzz::require;
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
    std::string out;
    for (const auto& [key, text] : table.entries())
        out += quoted(key) + " = " + quoted(text) + ";\n";
    return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto table = StringsTable::parse(sweepwright::fuzz::asText(data, size));
    if (!table) return 0;
    require(table->problems().size() <= StringsTable::kMaxProblems + 1, "problems are limited");
    for (const auto& [key, text] : table->entries()) {
        require(sweepwright::platform::isUtf8(key), "keys are UTF-8");
        require(sweepwright::platform::isUtf8(text), "texts are UTF-8");
        require(table->find(key) != nullptr && *table->find(key) == text, "a key finds its text");
    }
    const std::string file = written(*table);
    if (file.size() > StringsTable::kMaxBytes) return 0;
    const auto again = StringsTable::parse(file);
    require(again.has_value() && again->problems().empty(), "what is written is sound");
    require(again->entries() == table->entries(), "a table survives being written");
    return 0;
}
