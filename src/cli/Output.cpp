#include "cli/Output.h"

#include <cerrno>
#include <cstdio>
#include <utility>

#include <fmt/format.h>

#include "engine/StorageAnalyzer.h"
#include "platform/ControlText.h"

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

void Output::table(const Table& table) {
    if (json_) return;
    pending_ += table.text([this](std::string_view cell) { return shown(cell); });
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
    const std::string line = fmt::format("sweepctl: {}\n", platform::escapedControls(text));
    std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace sweepwright::cli
