#include "cli/ProgramDescription.h"

namespace sweepwright::cli {

std::vector<GlobalOption> globalOptions() {
    return {
        {.name = "--device-root",
         .value = "DIR",
         .help = "the folder that is the device's \"/\": where it is mounted or was copied to "
                 "($SWEEPWRIGHT_DEVICE_ROOT); on a device \"/\", elsewhere the device that is "
                 "connected, or a sample device, made on first use",
         .isHostFolder = true},
        {.name = "--home",
         .value = "PATH",
         .help = "the app's home directory on the device ($SWEEPWRIGHT_HOME)",
         .isDevicePath = true},
        {.name = "--tmp",
         .value = "PATH",
         .help = "the temporary directory on the device (HOME/tmp)",
         .isDevicePath = true},
        {.name = "--idiom",
         .value = "KIND",
         .help = "iphone or ipad (iphone)",
         .choices = {"iphone", "ipad"}},
        {.name = "--json", .help = "one JSON document, and nothing else, on standard output"},
        {.name = "--no-progress", .help = "no progress line"},
        {.letter = "-v",
         .name = "--verbose",
         .help = "the diagnostic log on standard error, too, and each folder and entry that could "
                 "not be read or removed"},
        {.letter = "-h",
         .name = "--help",
         .help = "this help, or a command's: sweepctl COMMAND --help"},
        {.name = "--version", .help = "the version"},
    };
}

std::vector<ExitStatus> exitStatuses() {
    return {
        {"0", "done"},
        {"1", "the operation reported an error"},
        {"2", "the words of the call are wrong"},
        {"3", "the device root can't be used, or is no device"},
        {"4", "done, but something that was to go could not be read or removed"},
        {"130, 143", "stopped by an interrupt or a request to end"},
    };
}

std::string programPurpose() {
    return "measures and cleans the storage of an iPhone or iPad";
}

}  // namespace sweepwright::cli
