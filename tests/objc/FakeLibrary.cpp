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
