// What a tap on a row of a card leads to: the Filza file manager.
#include <QByteArray>
#include <QPointer>
#include <algorithm>

#include "localization/LocalizedFormat.h"
#include "ui/home/ViewController.h"
#include "ui/presentation/Addresses.h"
#include "ui/presentation/Presenter.h"

namespace sweepwright::ui {

namespace {

// What stands unescaped in the query of an address, beside letters and digits.
constexpr const char* kQueryAllowed = "-._~!$&'()*+,;=:@/?";

QByteArray queryEncoded(const std::string& path) {
    return QByteArray::fromStdString(path).toPercentEncoding(kQueryAllowed);
}

}  // namespace

const AppCacheInfo* ViewController::appOfEntry(const std::string& entry) const {
    const std::size_t end = entry.find(" (");
    if (end == std::string::npos) return nullptr;
    const std::string name = entry.substr(0, end);
    const auto found = std::find_if(
        thirdPartyAppList_.begin(), thirdPartyAppList_.end(), [&](const AppCacheInfo& app) {
            return (app.appName ? app.appName : app.bundleIdentifier) == name;
        });
    return found == thirdPartyAppList_.end() ? nullptr : &*found;
}

void ViewController::cleanItemCardViewDidTapFilePath(CleanItemCardView& card,
                                                     const std::string& path) {
    if (isCovered()) return;
    if (&card == &appCacheCard()) {
        const AppCacheInfo* app = appOfEntry(path);
        if (app == nullptr || !app->dataPath) return;
        return offerFilza("Open Path", "Open Path Message", *app->dataPath);
    }
    const bool isFile = services_.files.fileExists(path) && !services_.files.isDirectory(path);
    offerFilza(isFile ? "Open File" : "Open Path",
               isFile ? "Open File Message" : "Open Path Message", path);
}

void ViewController::offerFilza(std::string_view titleKey, std::string_view messageKey,
                                const std::string& path) {
    auto alert = makeAlert(texts(titleKey), QString::fromStdString(localization::formatLocalized(
                                                format(messageKey), {path})));
    alert->addTip(texts("Filza Trash Tip"));
    alert->addAction(texts("Open Filza"), AlertAction::Default, [self = QPointer(this), path] {
        if (self) self->openPathInFilza(path);
    });
    alert->addAction(texts("Cancel"), AlertAction::Cancel);
    present(std::move(alert));
}

void ViewController::openPathInFilza(const std::string& path) {
    const QByteArray encoded = queryEncoded(path);
    for (const char* form : {"filza://view=", "filza://view//", "filza://"}) {
        const QByteArray address = form + encoded;
        if (!services_.opener.canOpenAddress(address)) continue;
        services_.opener.openAddress(address, [self = QPointer(this)](bool opened) {
            if (self && !opened) self->showFilzaNotInstalledAlert();
        });
        return;
    }
    showFilzaNotInstalledAlert();
}

void ViewController::showFilzaNotInstalledAlert() {
    tell("Cannot Open Filza", texts("Cannot Open Filza Message"));
}

void ViewController::creditLinkTapped() {
    const QUrl url(repositoryAddress());
    if (services_.opener.canOpen(url)) services_.opener.open(url, [](bool) {});
}

}  // namespace sweepwright::ui
