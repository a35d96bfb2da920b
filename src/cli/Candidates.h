#pragma once

#include <functional>
#include <string>
#include <vector>

namespace sweepwright::cli {

/// A word that may stand in a place, for a shell's completion.
struct Candidate {
    std::string word;
    std::string help{};  ///< what the word stands for; may be empty
};

/// Lists the words that may stand in a place. Called with the device open and with what has been
/// typed of the word; may list words that begin otherwise, which are left out then. Changes
/// nothing.
using Candidates = std::function<std::vector<Candidate>(const std::string& begun)>;

/// The apps of the device by their identifiers.
std::vector<Candidate> installedApps(const std::string& begun);

/// The entries of the folder of the device that `begun` lies in; folders end in "/".
std::vector<Candidate> devicePaths(const std::string& begun);

/// Words without help.
std::vector<Candidate> candidatesFrom(const std::vector<std::string>& words);

}  // namespace sweepwright::cli
