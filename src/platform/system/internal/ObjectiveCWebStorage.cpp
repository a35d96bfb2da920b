#include "platform/system/internal/ObjectiveCWebStorage.h"

#include "platform/system/internal/ObjectiveCBridge.h"

namespace sweepwright::platform {

using Object = ObjectiveCBridge::Object;

WebStorage& WebStorage::ofHost() {
    static ObjectiveCWebStorage storage(ObjectiveCBridge::shared());
    return storage;
}

Result<> ObjectiveCWebStorage::removeAllCachedResponses() {
    if (bridge_ == nullptr) return {};
    return bridge_->guarded([&] {
        const Object cache = bridge_->ask(bridge_->classNamed("NSURLCache"), "sharedURLCache");
        bridge_->send<void>(cache, "removeAllCachedResponses");
    });
}

Result<> ObjectiveCWebStorage::deleteAllCookies() {
    if (bridge_ == nullptr) return {};
    return bridge_->guarded([&] {
        const Object storage =
            bridge_->ask(bridge_->classNamed("NSHTTPCookieStorage"), "sharedHTTPCookieStorage");
        // A copy: the storage's own list changes while its cookies go.
        const Object cookies = bridge_->ask(bridge_->ask(storage, "cookies"), "copy");
        bridge_->send<Object>(cookies, "autorelease");
        bridge_->forEach(
            cookies, [&](Object cookie) { bridge_->send<void>(storage, "deleteCookie:", cookie); });
    });
}

}  // namespace sweepwright::platform
