#include "ui/shell/DesktopUrlOpener.h"

#include <QDesktopServices>
#include <QProcess>

namespace sweepwright::ui {

namespace {

bool isRegistered(const QString& scheme) {
    QProcess query;
    query.start(QStringLiteral("xdg-mime"), {QStringLiteral("query"), QStringLiteral("default"),
                                             QStringLiteral("x-scheme-handler/") + scheme});
    constexpr int kPatienceMilliseconds = 2000;
    if (!query.waitForFinished(kPatienceMilliseconds)) return false;
    return !query.readAllStandardOutput().trimmed().isEmpty();
}

// What stands before the first ":", if that can be a scheme.
QString schemeOf(const QByteArray& address) {
    const QUrl scheme = QUrl::fromEncoded(address.left(address.indexOf(':') + 1) + '/');
    return scheme.isValid() ? scheme.scheme() : QString();
}

}  // namespace

bool DesktopUrlOpener::canOpen(const QUrl& url) const {
    return url.isValid() && !url.scheme().isEmpty() && isRegistered(url.scheme());
}

void DesktopUrlOpener::open(const QUrl& url, const Completion& completion) {
    const bool opened = QDesktopServices::openUrl(url);
    if (completion) completion(opened);
}

bool DesktopUrlOpener::canOpenAddress(const QByteArray& address) const {
    const QString scheme = schemeOf(address);
    return !scheme.isEmpty() && isRegistered(scheme);
}

void DesktopUrlOpener::openAddress(const QByteArray& address, const Completion& completion) {
    if (const QUrl url = QUrl::fromEncoded(address); url.isValid()) return open(url, completion);
    const bool opened =
        QProcess::startDetached(QStringLiteral("xdg-open"), {QString::fromLatin1(address)});
    if (completion) completion(opened);
}

}  // namespace sweepwright::ui
