#include "platform/system/internal/ObjectiveCBridge.h"

#include <cstddef>
#include <cstring>
#include <exception>

#include <dlfcn.h>

namespace sweepwright::platform {
namespace {

constexpr const char* kUnknownException = "Objective-C exception";

/// Makes the run time and the classes we ask for present where the system has them but this
/// program, which links none of them, may not have loaded them yet.
void loadSystemLibraries() {
#ifdef __APPLE__
    for (const char* library :
         {"/usr/lib/libobjc.A.dylib", "/System/Library/Frameworks/Foundation.framework/Foundation",
          "/System/Library/Frameworks/CoreServices.framework/CoreServices",
          "/System/Library/Frameworks/MobileCoreServices.framework/MobileCoreServices"})
        dlopen(library, RTLD_LAZY | RTLD_GLOBAL);
#endif
}

template <class Function>
bool find(Function& function, const char* name) {
    function = reinterpret_cast<Function>(dlsym(RTLD_DEFAULT, name));
    return function != nullptr;
}

}  // namespace

/// An autorelease pool of the run time's; none where it has no such class.
class ObjectiveCBridge::AutoreleaseScope {
  public:
    explicit AutoreleaseScope(const ObjectiveCBridge& bridge)
        : bridge_(bridge),
          pool_(bridge.send<Object>(
              bridge.send<Object>(bridge.classNamed("NSAutoreleasePool"), "alloc"), "init")) {}
    ~AutoreleaseScope() { bridge_.send<void>(pool_, "drain"); }
    AutoreleaseScope(const AutoreleaseScope&) = delete;
    AutoreleaseScope& operator=(const AutoreleaseScope&) = delete;

  private:
    const ObjectiveCBridge& bridge_;
    Object pool_;
};

const ObjectiveCBridge* ObjectiveCBridge::shared() {
    static const std::optional<ObjectiveCBridge> bridge = []() -> std::optional<ObjectiveCBridge> {
        loadSystemLibraries();
        if (const auto functions = findFunctions()) return ObjectiveCBridge(*functions);
        return std::nullopt;
    }();
    return bridge ? &*bridge : nullptr;
}

std::optional<ObjectiveCBridge::Functions> ObjectiveCBridge::findFunctions() {
    Functions found;
    if (!find(found.lookUpClass, "objc_lookUpClass") ||
        !find(found.respondsToSelector, "class_respondsToSelector") ||
        !find(found.methodImplementation, "class_getMethodImplementation") ||
        !find(found.registerName, "sel_registerName"))
        return std::nullopt;
    find(found.classOf, "object_getClass");
    find(found.messageLookup, "objc_msg_lookup");
    find(found.throwObject, "objc_exception_throw");
    return found;
}

ObjectiveCBridge::ObjectiveCBridge(const Functions& functions)
    : functions_(functions),
      exceptions_(functions.lookUpClass, functions.throwObject, functions.lookUpClass("NSObject")) {
}

ObjectiveCBridge::Object ObjectiveCBridge::classNamed(const char* name) const {
    return functions_.lookUpClass(name);
}

void* ObjectiveCBridge::selectorNamed(const char* name) const {
    return functions_.registerName(name);
}

ObjectiveCBridge::Object ObjectiveCBridge::classOf(Object object) const {
    if (functions_.classOf != nullptr) return functions_.classOf(object);
    // GNU's run time tells it by a macro only: every object starts with its class.
    Object found = nullptr;
    std::memcpy(&found, object, sizeof(found));
    return found;
}

bool ObjectiveCBridge::implements(Object receiver, const char* selector) const {
    if (receiver == nullptr) return false;
    return functions_.respondsToSelector(classOf(receiver), selectorNamed(selector)) != 0;
}

bool ObjectiveCBridge::responds(Object receiver, const char* selector) const {
    // The object is asked, for it may forward what its class does not implement.
    if (!implements(receiver, "respondsToSelector:")) return implements(receiver, selector);
    return send<unsigned char>(receiver, "respondsToSelector:", selectorNamed(selector)) != 0;
}

ObjectiveCBridge::AnyFunction ObjectiveCBridge::methodOf(Object receiver, const char* selector,
                                                         void*& name) const {
    name = selectorNamed(selector);
    // GNU's way to forward needs to know the receiver, which its other function does not pass on.
    if (functions_.messageLookup != nullptr) return functions_.messageLookup(receiver, name);
    return functions_.methodImplementation(classOf(receiver), name);
}

std::optional<Error> ObjectiveCBridge::guard(const std::function<void()>& body) const {
    const AutoreleaseScope scope(*this);
    const auto error = [](std::string description) {
        return Error{std::string(kObjectiveCErrorDomain), 1, std::move(description)};
    };
    Object exception = nullptr;
    try {
        body();
        return std::nullopt;
    } catch (const std::exception& thrown) {
        return error(thrown.what());
    } catch (...) {
        exception = exceptions_.caught();
        // Leaving the block may release it.
        if (implements(exception, "retain")) send<Object>(exception, "retain");
    }
    // Outside the block: asking for the reason may raise another one, and they do not nest.
    std::string reason = reasonOf(exception);
    if (implements(exception, "release")) send<void>(exception, "release");
    return error(std::move(reason));
}

std::string ObjectiveCBridge::reasonOf(Object exception) const {
    for (const char* selector : {"reason", "description"}) {
        try {
            if (const auto found = text(ask(exception, selector)); found && !found->empty())
                return *found;
        } catch (...) {
            continue;  // an exception that can't describe itself is described by the fixed text
        }
    }
    return kUnknownException;
}

std::optional<std::string> ObjectiveCBridge::text(Object string) const {
    if (!responds(string, "UTF8String")) return std::nullopt;
    const char* characters = send<const char*>(string, "UTF8String");
    return characters != nullptr ? std::optional<std::string>(characters) : std::nullopt;
}

std::optional<std::string> ObjectiveCBridge::bytes(Object data) const {
    if (!responds(data, "bytes") || !responds(data, "length")) return std::nullopt;
    const auto length = send<std::size_t>(data, "length");
    const auto* content = static_cast<const char*>(send<const void*>(data, "bytes"));
    if (content == nullptr) return std::string();
    return std::string(content, length);
}

void ObjectiveCBridge::forEach(Object array, const std::function<void(Object)>& visit) const {
    const auto count = send<std::size_t>(array, "count");
    for (std::size_t i = 0; i < count; ++i)
        visit(send<Object>(array, "objectAtIndex:", i));
}

ObjectiveCReference::ObjectiveCReference(const ObjectiveCBridge& bridge,
                                         ObjectiveCBridge::Object object)
    : bridge_(&bridge), object_(object) {
    bridge.send<ObjectiveCBridge::Object>(object, "retain");
}

ObjectiveCReference::~ObjectiveCReference() {
    if (object_ == nullptr) return;
    // What the object's end raises has no one left to hear of it.
    [[maybe_unused]] const auto raised =
        bridge_->guarded([this] { bridge_->send<void>(object_, "release"); });
}

}  // namespace sweepwright::platform
