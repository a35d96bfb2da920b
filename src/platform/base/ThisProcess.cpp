#include "platform/base/ThisProcess.h"

#include <cerrno>
#include <cstdlib>

#include <unistd.h>

namespace sweepwright::platform {

std::string ThisProcess::program() {
#ifdef __linux__
    return program_invocation_short_name;
#else
    return getprogname();
#endif
}

std::int64_t ThisProcess::number() {
    return getpid();
}

}  // namespace sweepwright::platform
