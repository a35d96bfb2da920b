#include "cli/Output.h"

#include <cerrno>
#include <cstdio>
#include <utility>

#include <fmt/format.h>

#include "cli/Text.h"
#include "cli/Wording.h"
#include "engine/StorageAnalyzer.h"
#include "platform/ControlText.h"
#include "platform/Terminal.h"

namespace sweepwright::cli {

std::string sizeText(std::uint64_t bytes) {
    return StorageAnalyzer::formatBytes(bytes);
}

std::string Output::shown(std::string_view bytes) const {
    return terminal_ ? platform::escapedControls(bytes) : std::string(bytes);
}

void Output::line(std::string_view text) {
    if (json_) return;
    pending_ += text;
    pending_ += '\n';
}

void Output::note(std::string_view text) {
    if (toPerson()) line(wrapped(text, page().columns));
}

void Output::table(const Table& table) {
    if (json_) return;
    if (toPerson() && table.empty()) return line(wording::kNothing);
    pending_ += table.text(page());
}

Page Output::page() const {
    return {.forPerson = toPerson(),
            .columns = platform::terminalColumns(platform::StandardStream::Output),
            .unicode = platform::localeIsUtf8(),
            .shown = [this](std::string_view cell) { return shown(cell); },
            .ownerOf = ownerOf_};
}

void Output::document(const Json& document) {
    if (!json_) return;
    pending_ = document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

platform::Result<> Output::flush() {
    const std::string text = std::exchange(pending_, {});
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() ||
        std::fflush(stdout) != 0) {
        return std::unexpected(platform::errorFromErrno(errno, "standard output"));
    }
    return {};
}

void complain(std::string_view text) {
    const std::string line = fmt::format("sweepctl: {}\n", platform::escapedControls(text));
    std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace sweepwright::cli
