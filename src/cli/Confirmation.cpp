#include "cli/Confirmation.h"

#include <cstdio>
#include <iostream>
#include <string>

#include <fmt/format.h>

#include "platform/ControlText.h"
#include "platform/FileManager.h"
#include "platform/Terminal.h"

namespace sweepwright::cli {

Outcome confirm(const std::string& question, bool sure) {
    using platform::StandardStream;
    if (sure) return {};
    if (!platform::isTerminal(StandardStream::Input) ||
        !platform::isTerminal(StandardStream::Error)) {
        return wrongWords("this removes data: add --yes to do it without a question");
    }
    fmt::print(stderr, "{} [y/N] ", platform::escapedControls(question));
    std::fflush(stderr);
    std::string answer;
    std::getline(std::cin, answer);
    if (!std::cin) std::fputs("\n", stderr);  // ended without the line that Enter would have ended
    answer = platform::lowerCased(answer);
    if (answer == "y" || answer == "yes") return {};
    return failed({"CommandLine", kOperationFailed, "not confirmed; nothing was removed"});
}

}  // namespace sweepwright::cli
