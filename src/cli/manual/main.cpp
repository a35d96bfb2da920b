// Writes a manual page on standard output: a tool of the build, which is not installed.
#include <cstdio>
#include <string>
#include <string_view>

#include "cli/ManualPage.h"

int main(int argc, char** argv) {
    using namespace sweepwright::cli;
    if (argc != 4) {
        std::fputs("usage: write_manual sweepctl|sweepwright DATE WEBSITE\n", stderr);
        return 2;
    }
    const ManualFacts facts{.date = argv[2], .website = argv[3]};
    const std::string page = std::string_view(argv[1]) == "sweepctl"
                                 ? commandManual(allCommands(), facts)
                                 : appManual(facts);
    std::fputs(page.c_str(), stdout);
    return std::fflush(stdout) == 0 ? 0 : 1;
}
