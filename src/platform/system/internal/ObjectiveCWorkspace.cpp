#include "platform/system/internal/ObjectiveCWorkspace.h"

#include <algorithm>
#include <utility>

#include "platform/system/internal/ObjectiveCBridge.h"

namespace sweepwright::platform {
namespace {

using Object = ObjectiveCBridge::Object;

class ObjectiveCProxy final : public ApplicationProxy {
  public:
    explicit ObjectiveCProxy(ObjectiveCReference proxy)
        : proxy_(std::move(proxy)), bridge_(proxy_.bridge()) {}

    Result<std::optional<std::string>> applicationIdentifier() override {
        return textOf("applicationIdentifier");
    }
    Result<std::optional<std::string>> localizedName() override { return textOf("localizedName"); }
    Result<std::optional<std::string>> bundlePath() override { return pathOf("bundleURL"); }
    Result<std::optional<std::string>> dataContainerPath() override {
        return pathOf("dataContainerURL");
    }
    Result<std::optional<std::string>> iconDataForVariant(std::int32_t variant) override;
    Result<std::vector<SizedIcon>> iconsOfAllSizes() override;

  private:
    Result<std::optional<std::string>> textOf(const char* property) {
        return bridge_.guarded([&] { return bridge_.text(bridge_.ask(proxy_.get(), property)); });
    }
    Result<std::optional<std::string>> pathOf(const char* property) {
        return bridge_.guarded(
            [&] { return bridge_.text(bridge_.ask(bridge_.ask(proxy_.get(), property), "path")); });
    }

    ObjectiveCReference proxy_;
    const ObjectiveCBridge& bridge_;
};

Result<std::optional<std::string>> ObjectiveCProxy::iconDataForVariant(std::int32_t variant) {
    return bridge_.guarded([&]() -> std::optional<std::string> {
        if (!bridge_.responds(proxy_.get(), "iconDataForVariant:")) return std::nullopt;
        return bridge_.bytes(bridge_.send<Object>(proxy_.get(), "iconDataForVariant:", variant));
    });
}

Result<std::vector<ApplicationProxy::SizedIcon>> ObjectiveCProxy::iconsOfAllSizes() {
    return bridge_.guarded([&] {
        std::vector<SizedIcon> icons;
        const Object pictures = bridge_.ask(proxy_.get(), "iconsOfAllSizes");
        if (!bridge_.responds(pictures, "allKeys")) return icons;
        Object keys = bridge_.send<Object>(pictures, "allKeys");
        keys = bridge_.send<Object>(keys,
                                    "sortedArrayUsingSelector:", bridge_.selectorNamed("compare:"));
        bridge_.forEach(keys, [&](Object key) {
            const Object data = bridge_.send<Object>(pictures, "objectForKey:", key);
            icons.push_back({bridge_.text(bridge_.ask(key, "description")).value_or(""),
                             bridge_.bytes(data).value_or("")});
        });
        std::ranges::reverse(icons);
        return icons;
    });
}

Object instanceOf(const ObjectiveCBridge& bridge, const std::string& className) {
    return bridge.ask(bridge.classNamed(className.c_str()), "defaultWorkspace");
}

}  // namespace

ApplicationWorkspace& ApplicationWorkspace::ofHost() {
    static ObjectiveCWorkspace workspace(ObjectiveCBridge::shared());
    return workspace;
}

ObjectiveCWorkspace::ObjectiveCWorkspace(const ObjectiveCBridge* bridge, std::string className)
    : bridge_(bridge), className_(std::move(className)) {}

ApplicationWorkspace::Availability ObjectiveCWorkspace::availability() {
    if (bridge_ == nullptr || bridge_->classNamed(className_.c_str()) == nullptr)
        return Availability::ClassMissing;
    const auto present =
        bridge_->guarded([&] { return instanceOf(*bridge_, className_) != nullptr; });
    return present.value_or(false) ? Availability::Available : Availability::InstanceMissing;
}

Result<std::optional<ApplicationWorkspace::Applications>>
ObjectiveCWorkspace::allInstalledApplications() {
    return list("allInstalledApplications");
}

Result<std::optional<ApplicationWorkspace::Applications>> ObjectiveCWorkspace::allApplications() {
    return list("allApplications");
}

Result<std::optional<ApplicationWorkspace::Applications>> ObjectiveCWorkspace::list(
    const char* selector) {
    if (availability() != Availability::Available) return std::nullopt;
    return bridge_->guarded([&]() -> std::optional<Applications> {
        const Object workspace = instanceOf(*bridge_, className_);
        if (!bridge_->responds(workspace, selector)) return std::nullopt;
        Applications applications;
        bridge_->forEach(bridge_->send<Object>(workspace, selector), [&](Object proxy) {
            applications.push_back(
                std::make_unique<ObjectiveCProxy>(ObjectiveCReference(*bridge_, proxy)));
        });
        return applications;
    });
}

}  // namespace sweepwright::platform
