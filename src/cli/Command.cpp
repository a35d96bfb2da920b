#include "cli/Command.h"

namespace sweepwright::cli {

std::optional<std::uint64_t> Call::number(const std::string& option) const {
    const auto found = options_.find(option);
    if (found == options_.end()) return std::nullopt;
    return std::get<std::uint64_t>(found->second);
}

std::optional<std::string> Call::text(const std::string& option) const {
    const auto found = options_.find(option);
    if (found == options_.end()) return std::nullopt;
    return std::get<std::string>(found->second);
}

const std::vector<std::string>& Call::words(const std::string& positional) const {
    static const std::vector<std::string> none;
    const auto found = words_.find(positional);
    return found == words_.end() ? none : found->second;
}

Commands allCommands() {
    Commands commands;
    addScanCommands(commands);
    addLookCommands(commands);
    addAnalyzeCommands(commands);
    addCleanCommands(commands);
    addAppCommands(commands);
    addProtectionCommands(commands);
    addHistoryCommands(commands);
    addLanguageCommands(commands);
    addConnectCommands(commands);
    addSampleCommands(commands);
    addHelpCommands(commands);
    return commands;
}

}  // namespace sweepwright::cli
