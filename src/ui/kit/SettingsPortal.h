#pragma once

#include <QDBusVariant>
#include <QObject>
#include <QString>
#include <QVariant>

namespace sweepwright::ui {

/// The desktop's settings portal (org.freedesktop.portal.Settings) on the session bus. Asks for
/// each setting once, without waiting, and reports every change. Without a bus it stays silent.
/// On the main thread.
class SettingsPortal final : public QObject {
    Q_OBJECT

  public:
    explicit SettingsPortal(QObject* parent) : QObject(parent) {}

    /// Begins; connect to settingRead() first.
    void start();

  Q_SIGNALS:
    /// `value` is a plain value, whichever version of the portal wrapped it.
    void settingRead(const QString& group, const QString& key, const QVariant& value);

  private Q_SLOTS:
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

  private:
    void ask(const QString& group, const QString& key);
};

namespace portal {

inline const QString kAppearanceGroup = QStringLiteral("org.freedesktop.appearance");
inline const QString kGnomeGroup = QStringLiteral("org.gnome.desktop.interface");
inline const QString kColorScheme = QStringLiteral("color-scheme");
inline const QString kTextScaling = QStringLiteral("text-scaling-factor");
inline const QString kAnimations = QStringLiteral("enable-animations");

}  // namespace portal

}  // namespace sweepwright::ui
