#include "platform/process/HostProgram.h"

#include <cerrno>
#include <cstdlib>
#include <string_view>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace sweepwright::platform {

bool hasHostProgram(const std::string& name) {
    const char* const path = std::getenv("PATH");
    std::string_view rest = path == nullptr ? "" : path;
    while (!rest.empty()) {
        const std::string_view folder = rest.substr(0, rest.find(':'));
        rest.remove_prefix(std::min(folder.size() + 1, rest.size()));
        if (access((std::string(folder) + "/" + name).c_str(), X_OK) == 0) return true;
    }
    return false;
}

Result<int> runHostProgram(const std::vector<std::string>& words) {
    std::vector<std::string> copies = words;
    std::vector<char*> pointers;
    pointers.reserve(copies.size() + 1);
    for (std::string& word : copies)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    pid_t child = -1;
    const int error =
        posix_spawnp(&child, pointers.front(), nullptr, nullptr, pointers.data(), environ);
    if (error != 0) return std::unexpected(errorFromErrno(error, words.front()));
    int status = 0;
    while (waitpid(child, &status, 0) < 0)
        if (errno != EINTR) return std::unexpected(errorFromErrno(errno, words.front()));
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace sweepwright::platform
