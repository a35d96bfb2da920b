#include "platform/base/UniqueDescriptor.h"

#include <unistd.h>

namespace sweepwright::platform {

UniqueDescriptor::~UniqueDescriptor() {
    if (descriptor_ >= 0) close(descriptor_);
}

}  // namespace sweepwright::platform
