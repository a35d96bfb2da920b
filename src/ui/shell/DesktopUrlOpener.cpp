#include "ui/shell/DesktopUrlOpener.h"

#include <QDesktopServices>
#include <QProcess>

namespace sweepwright::ui {

bool DesktopUrlOpener::canOpen(const QUrl& url) const {
    if (!url.isValid() || url.scheme().isEmpty()) return false;
    QProcess query;
    query.start(QStringLiteral("xdg-mime"), {QStringLiteral("query"), QStringLiteral("default"),
                                             QStringLiteral("x-scheme-handler/") + url.scheme()});
    constexpr int kPatienceMilliseconds = 2000;
    if (!query.waitForFinished(kPatienceMilliseconds)) return false;
    return !query.readAllStandardOutput().trimmed().isEmpty();
}

void DesktopUrlOpener::open(const QUrl& url, const Completion& completion) {
    const bool opened = QDesktopServices::openUrl(url);
    if (completion) completion(opened);
}

}  // namespace sweepwright::ui
