#include "cli/Program.h"

int main(int argc, char** argv) {
    return sweepwright::cli::runProgram({argv + (argc > 0 ? 1 : 0), argv + argc});
}
