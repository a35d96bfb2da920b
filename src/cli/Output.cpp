#include "cli/Output.h"

#include <cerrno>
#include <cstdio>
#include <utility>

#include <fmt/format.h>

#include "cli/Text.h"
#include "cli/Translation.h"
#include "cli/Wording.h"
#include "engine/StorageAnalyzer.h"
#include "platform/process/Terminal.h"
#include "platform/text/ControlText.h"

namespace sweepwright::cli {

namespace {

/// On standard error.
void writeLine(std::string line) {
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace

std::string sizeText(std::uint64_t bytes) {
    return StorageAnalyzer::formatBytes(bytes);
}

std::string Output::shown(std::string_view bytes) {
    return platform::escapedControls(bytes);
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
    if (toPerson() && table.empty()) return line(translated(wording::kNothing));
    pending_ += table.text(page());
}

Page Output::page() const {
    return {.forPerson = toPerson(),
            .columns = platform::terminalColumns(platform::StandardStream::Output),
            .unicode = platform::localeIsUtf8(),
            .shown = shown,
            .ownerOf = ownerOf_};
}

void Output::document(Json document) {
    if (json_) document_ = std::move(document);
}

bool Output::addToDocument(const Json& keys) {
    if (!document_ || !document_->is_object()) return false;
    document_->update(keys);
    return true;
}

platform::Result<> Output::flush() {
    std::string text = std::exchange(pending_, {});
    if (document_) text = document_->dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
    document_.reset();
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() ||
        std::fflush(stdout) != 0) {
        return std::unexpected(platform::errorFromErrno(errno, "standard output"));
    }
    return {};
}

void complain(std::string_view text) {
    writeLine(fmt::format("sweepctl: {}", platform::escapedControls(text)));
}

void remark(std::string_view text) {
    if (!platform::isTerminal(platform::StandardStream::Error)) return;
    if (platform::terminalIsDumb()) return complain(text);
    writeLine(fmt::format("\x1b[2msweepctl: {}\x1b[22m", platform::escapedControls(text)));
}

}  // namespace sweepwright::cli
