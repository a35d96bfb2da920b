#include "ui/apps/ListedApp.h"

#include <QHash>
#include <utility>

namespace sweepwright::ui {

ListedApp::ListedApp(AppCacheInfo info, QString key, AppIconStore::Handle icon)
    : info_(std::move(info)),
      key_(std::move(key)),
      icon_(std::move(icon)),
      identifier_(info_.bundleIdentifier.value_or("")) {
    const QString identifier = QString::fromStdString(identifier_);
    const QString name = QString::fromStdString(info_.appName.value_or(""));
    displayName_ = name.isEmpty() ? identifier : name;
    loweredName_ = name.toLower();
    loweredIdentifier_ = identifier.toLower();
}

bool ListedApp::matches(const QString& lowered) const {
    return loweredName_.contains(lowered) || loweredIdentifier_.contains(lowered);
}

ListedApps listApps(const std::vector<AppCacheInfo>& apps,
                    const std::function<AppIconStore::Handle(const AppCacheInfo&)>& iconOf) {
    ListedApps listed;
    listed.reserve(apps.size());
    QHash<QString, int> seen;
    for (const AppCacheInfo& app : apps) {
        const QString identifier = QString::fromStdString(app.bundleIdentifier.value_or(""));
        const int earlier = seen[identifier]++;
        // A line break stands in no identifier.
        const QString key =
            earlier == 0 ? identifier : QStringLiteral("%1\n%2").arg(identifier).arg(earlier);
        listed.push_back(std::make_shared<const ListedApp>(app, key, iconOf(app)));
    }
    return listed;
}

}  // namespace sweepwright::ui
