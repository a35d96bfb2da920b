#pragma once

#include <cstddef>
#include <expected>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "cli/Failure.h"

namespace sweepwright::cli {

/// What a person is to agree to, since it can't be undone.
struct Confirmation {
    using Lines = std::vector<std::string>;

    std::string why;        ///< told where nobody can be asked: "this removes data"
    std::string otherwise;  ///< what holds after a no: "nothing was removed"
    /// What is shown; the last line is the question. Made only when somebody is asked. None where
    /// nothing would change: then nobody is.
    std::function<std::expected<Lines, Failure>()> question;

    /// The question of lines that are known without work.
    static auto asking(Lines lines) {
        return [lines = std::move(lines)] { return lines; };
    }
    /// The same, or none for a list that is empty already.
    static decltype(question) askingUnlessEmpty(std::size_t count, std::string line) {
        if (count == 0) return {};
        return asking({std::move(line)});
    }
};

/// Asks for agreement. `sure` (the person said --yes) needs no question. On a terminal the question
/// is put on standard error and only "y" or "yes" agrees: the failure is then of status
/// kOperationFailed. Without a terminal it fails as requireAnswerable() does.
Outcome confirm(const Confirmation& confirmation, bool sure);

/// A failure of status kWrongWords where a question is needed and nobody can answer it, for who
/// must work before it can ask.
Outcome requireAnswerable(const std::string& why, bool sure);

}  // namespace sweepwright::cli
