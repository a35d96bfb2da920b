#include "objc/FakeLibrary.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include <dlfcn.h>

#include "support/TemporaryDevice.h"

namespace sweepwright::test {
namespace {

/// GNUstep takes its folders, relative to the user's home, from a file. Without this the tests
/// would delete the cookies of whoever runs them.
void keepFilesIn(const std::string& folder) {
    const std::string relative = std::string("../../../../../../../..") + folder;
    const std::string file = folder + "/GNUstep.conf";
    std::ofstream(file) << "GNUSTEP_USER_CONFIG_FILE=\n"
                        << "GNUSTEP_USER_DIR=" << relative << "\n"
                        << "GNUSTEP_USER_DIR_LIBRARY=" << relative << "/Library\n"
                        << "GNUSTEP_USER_DEFAULTS_DIR=" << relative << "/Defaults\n";
    setenv("GNUSTEP_CONFIG_FILE", file.c_str(), 1);
}

template <class Function>
void find(void* library, Function& function, const char* name) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    if (function == nullptr) std::abort();
}

}  // namespace

FakeLibrary::FakeLibrary() {
    static const TemporaryFolder folder;
    keepFilesIn(folder.path());
    void* library = dlopen(FAKE_WORKSPACE, RTLD_NOW | RTLD_GLOBAL);
    if (library == nullptr) {
        std::fprintf(stderr, "%s\n", dlerror());
        std::abort();
    }
    find(library, liveObjects, "fakeLiveObjects");
    find(library, setCookies, "fakeSetCookies");
    find(library, cookieCount, "fakeCookieCount");
    find(library, cacheResponse, "fakeCacheResponse");
    find(library, hasCachedResponse, "fakeHasCachedResponse");
}

const FakeLibrary& FakeLibrary::loaded() {
    static const FakeLibrary library;
    return library;
}

}  // namespace sweepwright::test

// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions();

// What the run time and GNUstep keep for good and hold in ways the leak checker can't follow:
// registered names, dispatch tables, forwarding frames, folders' names. Memory of our own code is
// still checked, and that no object outlives its owner is counted by the tests themselves.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:objc_malloc\n"
           "leak:class_copyMethodList\n"
           "leak:libgnustep-base.so\n";
}

// GNUstep takes the run time's lock and its own in either order while classes initialise.
extern "C" const char* __tsan_default_suppressions() {
    return "deadlock:libgnustep-base.so\n"
           "deadlock:libobjc.so\n";
}
// NOLINTEND(bugprone-reserved-identifier)
