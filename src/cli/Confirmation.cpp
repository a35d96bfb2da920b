#include "cli/Confirmation.h"

#include <cstdio>
#include <iostream>

#include <fmt/format.h>

#include "cli/Translation.h"
#include "platform/files/FileManager.h"
#include "platform/process/Terminal.h"
#include "platform/text/ControlText.h"

namespace sweepwright::cli {

namespace {

bool agrees(const Confirmation::Lines& question) {
    const char* separator = "";
    for (const std::string& line : question) {
        fmt::print(stderr, "{}{}", separator, platform::escapedControls(line));
        separator = "\n";
    }
    std::fputs(" [y/N] ", stderr);
    std::fflush(stderr);
    std::string answer;
    std::getline(std::cin, answer);
    if (!std::cin) std::fputs("\n", stderr);  // ended without the line that Enter would have ended
    answer = platform::lowerCased(answer);
    return answer == "y" || answer == "yes";
}

}  // namespace

Outcome requireAnswerable(const std::string& why, bool sure) {
    using platform::StandardStream;
    if (sure || (platform::isTerminal(StandardStream::Input) &&
                 platform::isTerminal(StandardStream::Error)))
        return {};
    return wrongWords(told("{}: add --yes to do it without a question", why));
}

Outcome confirm(const Confirmation& confirmation, bool sure) {
    if (auto answerable = requireAnswerable(confirmation.why, sure); sure || !answerable)
        return answerable;
    if (!confirmation.question) return {};
    const auto question = confirmation.question();
    if (!question) return std::unexpected(question.error());
    if (agrees(*question)) return {};
    return failed(
        {"CommandLine", kOperationFailed, told("not confirmed; {}", confirmation.otherwise)});
}

}  // namespace sweepwright::cli
