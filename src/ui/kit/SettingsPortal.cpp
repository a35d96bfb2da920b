#include "ui/kit/SettingsPortal.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace sweepwright::ui {

namespace {

const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kInterface = QStringLiteral("org.freedesktop.portal.Settings");

// A portal wraps a value in one variant or, in its older form, in two.
QVariant unwrapped(QVariant value) {
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

}  // namespace

void SettingsPortal::start() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;
    bus.connect(kService, kPath, kInterface, QStringLiteral("SettingChanged"), this,
                SLOT(settingChanged(QString, QString, QDBusVariant)));
    ask(portal::kAppearanceGroup, portal::kColorScheme);
    ask(portal::kGnomeGroup, portal::kTextScaling);
    ask(portal::kGnomeGroup, portal::kAnimations);
}

void SettingsPortal::settingChanged(const QString& group, const QString& key,
                                    const QDBusVariant& value) {
    Q_EMIT settingRead(group, key, unwrapped(value.variant()));
}

void SettingsPortal::ask(const QString& group, const QString& key) {
    QDBusMessage call =
        QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("Read"));
    call << group << key;
    auto* watcher =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [=, this] {
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (reply.isValid()) settingChanged(group, key, reply.value());
        watcher->deleteLater();
    });
}

}  // namespace sweepwright::ui
