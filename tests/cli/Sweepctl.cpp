#include "cli/Sweepctl.h"

#include <gtest/gtest.h>

namespace sweepwright::test {

Sweepctl::Sweepctl() {
    device_.folder("/var/mobile");
    environment_ = {{"HOME", home_.path()}, {"TERM", "xterm"}, {"LANG", "C.UTF-8"}};
}

void Sweepctl::setVariable(const std::string& name, const std::string& value) {
    std::erase_if(environment_, [&](const auto& variable) { return variable.first == name; });
    environment_.emplace_back(name, value);
}

void Sweepctl::setTerminal(const TerminalStreams& terminal, unsigned short columns) {
    terminal_ = terminal;
    columns_ = columns;
}

ProcessOptions Sweepctl::options(const std::vector<std::string>& words) const {
    ProcessOptions options = bareOptions({"--device-root", device_.root()});
    options.arguments.insert(options.arguments.end(), words.begin(), words.end());
    return options;
}

ProcessOptions Sweepctl::bareOptions(const std::vector<std::string>& words) const {
    ProcessOptions options;
    options.arguments = {SWEEPCTL};
    options.arguments.insert(options.arguments.end(), words.begin(), words.end());
    options.environment = environment_;
    options.terminal = terminal_;
    options.columns = columns_;
    return options;
}

ProcessResult Sweepctl::run(const std::vector<std::string>& words) const {
    return Process::run(options(words));
}

ProcessResult Sweepctl::runBare(const std::vector<std::string>& words) const {
    return Process::run(bareOptions(words));
}

nlohmann::json Sweepctl::json(std::vector<std::string> words) const {
    words.insert(words.begin(), "--json");
    const ProcessResult result = run(words);
    EXPECT_EQ(result.status, 0) << result.output << result.error;
    EXPECT_EQ(result.error, "");
    auto document = nlohmann::json::parse(result.output, nullptr, false);
    EXPECT_FALSE(document.is_discarded()) << result.output;
    return document;
}

bool isOneLine(const std::string& text) {
    return text.size() > 1 && text.find('\n') == text.size() - 1;
}

std::string errorIn(const std::string& output) {
    const auto document = nlohmann::json::parse(output, nullptr, false);
    if (document.is_discarded() || !document.contains("error") || document.size() != 1) {
        ADD_FAILURE() << "no error document: " << output;
        return {};
    }
    const auto& error = document["error"];
    EXPECT_TRUE(error["domain"].is_string() && error["code"].is_number_integer() &&
                error["description"].is_string())
        << output;
    return error.value("description", "");
}

}  // namespace sweepwright::test
