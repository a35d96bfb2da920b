#include "platform/system/internal/ObjectiveCException.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

#include <cxxabi.h>
#include <unwind.h>

#ifdef __APPLE__

#include <typeinfo>

extern "C" {
void* __cxa_current_primary_exception() noexcept;
void __cxa_decrement_exception_refcount(void* thrown) noexcept;
}

namespace sweepwright::platform {

ObjectiveCException::ObjectiveCException(LookUpClass lookUpClass, Throw /*throwObject*/,
                                         void* /*sample*/)
    : lookUpClass_(lookUpClass) {}

// Here an Objective-C exception is a C++ exception whose type is named after the object's class and
// whose value starts with the object.
void* ObjectiveCException::caught() const {
    const std::type_info* type = abi::__cxa_current_exception_type();
    if (type == nullptr || lookUpClass_(type->name()) == nullptr) return nullptr;
    void* thrown = __cxa_current_primary_exception();
    if (thrown == nullptr) return nullptr;
    void* object = nullptr;
    std::memcpy(&object, thrown, sizeof(object));
    __cxa_decrement_exception_refcount(thrown);
    return object;
}

}  // namespace sweepwright::platform

#else

namespace sweepwright::platform {
namespace {

/// The GNU run time's exceptions, and the class that marks them for the unwinder.
struct GnuException {
    _Unwind_Exception base;
    void* object;
};

constexpr std::uint64_t classFrom(const char (&letters)[9]) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < 8; ++i)
        value = value << 8U | static_cast<unsigned char>(letters[i]);
    return value;
}

constexpr std::uint64_t kGnuClass = classFrom("GNUCOBJC");
constexpr std::uint64_t kProbeClass = classFrom("SWPWPROB");

/// The C++ run time's record of the exception that this thread handles now; null outside a catch
/// block. The ABI fixes that the thread's globals start with it.
char* handledRecord() {
    char* record = nullptr;
    std::memcpy(&record, static_cast<void*>(abi::__cxa_get_globals()), sizeof(record));
    return record;
}

/// Where the unwinder's part lies within that record is the C++ library's own affair, so it is
/// found out with an exception whose address is known.
bool findDistance(long& distance) {
    _Unwind_Exception probe{};
    probe.exception_class = kProbeClass;
    try {
        _Unwind_RaiseException(&probe);
    } catch (...) {
        distance = reinterpret_cast<char*>(&probe) - handledRecord();
        return true;
    }
    return false;
}

void* objectAt(long distance) {
    char* record = handledRecord();
    if (record == nullptr) return nullptr;
    const auto* thrown = reinterpret_cast<const GnuException*>(record + distance);
    return thrown->base.exception_class == kGnuClass ? thrown->object : nullptr;
}

}  // namespace

ObjectiveCException::ObjectiveCException(LookUpClass lookUpClass, Throw throwObject, void* sample)
    : lookUpClass_(lookUpClass) {
    if (throwObject == nullptr || !findDistance(distance_)) return;
    try {
        throwObject(sample);
    } catch (...) {
        known_ = objectAt(distance_) == sample;
    }
}

void* ObjectiveCException::caught() const {
    return known_ ? objectAt(distance_) : nullptr;
}

}  // namespace sweepwright::platform

#endif
