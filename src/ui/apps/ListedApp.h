#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "apps/AppCacheInfo.h"
#include "ui/apps/AppIconStore.h"

namespace sweepwright::ui {

/// An installed app as the screens list it: its record, and what is asked of it again and again.
class ListedApp {
  public:
    /// `key` is the app's alone in its list. `icon` may be none.
    ListedApp(AppCacheInfo info, QString key, AppIconStore::Handle icon);

    [[nodiscard]] const AppCacheInfo& info() const { return info_; }
    [[nodiscard]] const QString& key() const { return key_; }
    [[nodiscard]] const AppIconStore::Handle& icon() const { return icon_; }
    /// The bundle identifier, empty when there is none.
    [[nodiscard]] const std::string& identifier() const { return identifier_; }
    /// The name, or the bundle identifier of an app without one.
    [[nodiscard]] const QString& displayName() const { return displayName_; }
    /// Whether the name or the identifier holds `lowered`, a text in lower case.
    [[nodiscard]] bool matches(const QString& lowered) const;

  private:
    AppCacheInfo info_;
    QString key_;
    AppIconStore::Handle icon_;
    std::string identifier_;
    QString displayName_;
    QString loweredName_;
    QString loweredIdentifier_;
};

using ListedAppPointer = std::shared_ptr<const ListedApp>;
using ListedApps = std::vector<ListedAppPointer>;

/// The apps in their order, each with the icon that `iconOf` gives for it. The key is the bundle
/// identifier; of apps that share one, the later ones get a number.
ListedApps listApps(const std::vector<AppCacheInfo>& apps,
                    const std::function<AppIconStore::Handle(const AppCacheInfo&)>& iconOf);

}  // namespace sweepwright::ui
