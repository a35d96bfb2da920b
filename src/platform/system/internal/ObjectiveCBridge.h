#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "platform/base/Error.h"
#include "platform/system/internal/ObjectiveCException.h"

namespace sweepwright::platform {

/// Domain of errors that were Objective-C exceptions; their description is the exception's reason.
inline constexpr std::string_view kObjectiveCErrorDomain = "ObjectiveC";

/// The Objective-C run time, reached by name: nothing is linked, and where it is absent there is no
/// bridge. Knows Apple's run time and GNU's. Thread-safe.
class ObjectiveCBridge {
  public:
    /// An object or a class; null is "nil". Owned as Objective-C has it.
    using Object = void*;

    /// The process's bridge, null where there is no run time. Looks for it on the first call, which
    /// must not come from within a catch block.
    static const ObjectiveCBridge* shared();

    /// The class, null when there is none of that name.
    [[nodiscard]] Object classNamed(const char* name) const;

    /// The name of a message, for arguments that are one.
    [[nodiscard]] void* selectorNamed(const char* name) const;

    /// Calls `body` within an autorelease scope. An exception it raises, Objective-C or C++, is
    /// returned as an error. What `body` returns must not be an object that the scope releases.
    /// Not from within a catch block.
    template <class Body>
    Result<std::invoke_result_t<Body&>> guarded(Body body) const {
        using Value = std::invoke_result_t<Body&>;
        if constexpr (std::is_void_v<Value>) {
            if (auto raised = guard(body)) return std::unexpected(std::move(*raised));
            return {};
        } else {
            std::optional<Value> value;
            if (auto raised = guard([&] { value.emplace(body()); }))
                return std::unexpected(std::move(*raised));
            // Filled by body(), for nothing was raised.
            return std::move(*value);  // NOLINT(bugprone-unchecked-optional-access)
        }
    }

    // --- Only within guarded(): these raise what the objects raise. ---

    /// Whether `receiver` answers `selector`; nil answers nothing.
    [[nodiscard]] bool responds(Object receiver, const char* selector) const;

    /// Sends a message. `Returned` and the arguments' types must be those of the method, no
    /// structures; a message to nil returns 0.
    template <class Returned, class... Arguments>
    Returned send(Object receiver, const char* selector, Arguments... arguments) const {
        if (receiver == nullptr) return Returned();
        using Method = Returned (*)(Object, void*, Arguments...);
        void* name = nullptr;
        const auto method = reinterpret_cast<Method>(methodOf(receiver, selector, name));
        return method(receiver, name, arguments...);
    }

    /// What a method without arguments that returns an object answers; nil when `receiver` does not
    /// respond to it.
    [[nodiscard]] Object ask(Object receiver, const char* selector) const {
        return responds(receiver, selector) ? send<Object>(receiver, selector) : nullptr;
    }

    /// A string object's text; none for nil and for what is no string.
    [[nodiscard]] std::optional<std::string> text(Object string) const;
    /// A data object's bytes; none for nil and for what is no data.
    [[nodiscard]] std::optional<std::string> bytes(Object data) const;
    /// Calls `visit` for each element of an array, in order.
    void forEach(Object array, const std::function<void(Object)>& visit) const;

  private:
    using AnyFunction = void (*)();
    struct Functions {
        void* (*lookUpClass)(const char*) = nullptr;
        unsigned char (*respondsToSelector)(void*, void*) = nullptr;
        AnyFunction (*methodImplementation)(void*, void*) = nullptr;
        void* (*registerName)(const char*) = nullptr;
        void* (*classOf)(void*) = nullptr;                     ///< Apple's run time only
        AnyFunction (*messageLookup)(void*, void*) = nullptr;  ///< GNU's run time only
        void (*throwObject)(void*) = nullptr;
    };
    class AutoreleaseScope;

    explicit ObjectiveCBridge(const Functions& functions);
    static std::optional<Functions> findFunctions();

    [[nodiscard]] Object classOf(Object object) const;
    [[nodiscard]] bool implements(Object receiver, const char* selector) const;
    AnyFunction methodOf(Object receiver, const char* selector, void*& name) const;
    [[nodiscard]] std::optional<Error> guard(const std::function<void()>& body) const;
    [[nodiscard]] std::string reasonOf(Object exception) const;

    Functions functions_;
    ObjectiveCException exceptions_;
};

/// Keeps an object alive. Moves only.
class ObjectiveCReference {
  public:
    /// Retains `object`, which may be nil. Only within ObjectiveCBridge::guarded().
    ObjectiveCReference(const ObjectiveCBridge& bridge, ObjectiveCBridge::Object object);
    ~ObjectiveCReference();
    ObjectiveCReference(ObjectiveCReference&& other) noexcept
        : bridge_(other.bridge_), object_(std::exchange(other.object_, nullptr)) {}
    ObjectiveCReference& operator=(ObjectiveCReference&&) = delete;
    ObjectiveCReference(const ObjectiveCReference&) = delete;
    ObjectiveCReference& operator=(const ObjectiveCReference&) = delete;

    [[nodiscard]] ObjectiveCBridge::Object get() const { return object_; }
    [[nodiscard]] const ObjectiveCBridge& bridge() const { return *bridge_; }

  private:
    const ObjectiveCBridge* bridge_;
    ObjectiveCBridge::Object object_;
};

}  // namespace sweepwright::platform
