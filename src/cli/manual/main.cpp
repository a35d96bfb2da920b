// Writes a manual page on standard output: a tool of the build, which is not installed.
#include <cstdio>
#include <string>
#include <string_view>

#include "cli/ManualPage.h"

int main(int argc, char** argv) {
    using namespace sweepwright::cli;
    if (argc != 5) {
        std::fputs("usage: write_manual sweepctl|sweepwright VERSION DATE WEBSITE\n", stderr);
        return 2;
    }
    const ManualFacts facts{.version = argv[2], .date = argv[3], .website = argv[4]};
    const std::string page = std::string_view(argv[1]) == "sweepctl"
                                 ? commandManual(allCommands(), facts)
                                 : appManual(facts);
    std::fputs(page.c_str(), stdout);
    return std::fflush(stdout) == 0 ? 0 : 1;
}
