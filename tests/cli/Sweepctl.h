#pragma once

#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "support/Process.h"
#include "support/TemporaryDevice.h"

namespace sweepwright::test {

/// The program as a person, a script or an administrator calls it: with a home folder of its own,
/// so that no test sees this computer's, and a device to work on.
class Sweepctl {
  public:
    Sweepctl();

    /// The device that the calls work on.
    TemporaryDevice& device() { return device_; }
    /// The person's home folder; a host path.
    [[nodiscard]] const std::string& homeFolder() const { return home_.path(); }

    /// Sets a variable of the calls to come; they have none but these and HOME, TERM and LANG.
    void setVariable(const std::string& name, const std::string& value);
    void setTerminal(const TerminalStreams& terminal, unsigned short columns = 80);

    /// The call on device().
    [[nodiscard]] ProcessOptions options(const std::vector<std::string>& words) const;
    /// The call with no device named.
    [[nodiscard]] ProcessOptions bareOptions(const std::vector<std::string>& words) const;

    [[nodiscard]] ProcessResult run(const std::vector<std::string>& words) const;
    [[nodiscard]] ProcessResult runBare(const std::vector<std::string>& words) const;

    /// Standard output of a call with --json that must succeed and write nothing else.
    [[nodiscard]] nlohmann::json json(std::vector<std::string> words) const;

  private:
    TemporaryFolder home_;
    TemporaryDevice device_;
    std::vector<std::pair<std::string, std::string>> environment_;
    TerminalStreams terminal_;
    unsigned short columns_ = 80;
};

/// Whether `text` is exactly one line that is not empty.
bool isOneLine(const std::string& text);

/// The description in the error document that `output` must be; a failure of the test if it is
/// something else.
std::string errorIn(const std::string& output);

}  // namespace sweepwright::test
