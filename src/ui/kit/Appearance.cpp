#include "ui/kit/Appearance.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QEvent>
#include <QFont>
#include <QGuiApplication>
#include <QJSEngine>
#include <QPalette>
#include <algorithm>

namespace sweepwright::ui {

namespace {

const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString kAppearanceGroup = QStringLiteral("org.freedesktop.appearance");
const QString kGnomeGroup = QStringLiteral("org.gnome.desktop.interface");
const QString kColorScheme = QStringLiteral("color-scheme");
const QString kTextScaling = QStringLiteral("text-scaling-factor");
const QString kAnimations = QStringLiteral("enable-animations");
constexpr uint kPreferDark = 1;
constexpr uint kPreferLight = 2;

// The font sizes, in points, that desktops come with: within them nobody has asked for more.
constexpr double kSmallestUsualFont = 8.0;
constexpr double kLargestUsualFont = 11.0;

bool paletteIsDark() {
    const QPalette palette = QGuiApplication::palette();
    return palette.color(QPalette::Window).lightness() <
           palette.color(QPalette::WindowText).lightness();
}

double scaleOfFont() {
    const double points = QGuiApplication::font().pointSizeF();
    if (points <= 0.0) return 1.0;
    if (points < kSmallestUsualFont) return points / kSmallestUsualFont;
    return std::max(points / kLargestUsualFont, 1.0);
}

// A portal wraps a value in one variant or, in its older form, in two.
QVariant unwrapped(QVariant value) {
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

}  // namespace

// Asks for each setting once and hears of every change.
class Appearance::Portal : public QObject {
    Q_OBJECT

  public:
    explicit Portal(Appearance& owner) : QObject(&owner), owner_(owner) {
        QDBusConnection bus = QDBusConnection::sessionBus();
        if (!bus.isConnected()) return;
        bus.connect(kService, kPath, kInterface, QStringLiteral("SettingChanged"), this,
                    SLOT(settingChanged(QString, QString, QDBusVariant)));
        ask(kAppearanceGroup, kColorScheme);
        ask(kGnomeGroup, kTextScaling);
        ask(kGnomeGroup, kAnimations);
    }

  private Q_SLOTS:
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value) {
        owner_.takeSetting(group, key, unwrapped(value.variant()));
    }

  private:
    void ask(const QString& group, const QString& key) {
        QDBusMessage call =
            QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("Read"));
        call << group << key;
        auto* watcher =
            new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this, [=, this] {
            const QDBusPendingReply<QDBusVariant> reply = *watcher;
            if (reply.isValid()) owner_.takeSetting(group, key, unwrapped(reply.value().variant()));
            watcher->deleteLater();
        });
    }

    Appearance& owner_;
};

Appearance::Appearance() {
    if (qApp != nullptr) qApp->installEventFilter(this);
}

Appearance::~Appearance() = default;

Appearance& Appearance::shared() {
    static Appearance appearance;
    return appearance;
}

Appearance* Appearance::create(QQmlEngine*, QJSEngine*) {
    QJSEngine::setObjectOwnership(&shared(), QJSEngine::CppOwnership);
    return &shared();
}

template <class Change>
void Appearance::change(const Change& apply) {
    const bool wasDark = dark();
    const double oldScale = textScale();
    const bool wasReduced = reducedMotion();
    apply();
    if (dark() != wasDark) Q_EMIT darkChanged();
    if (textScale() != oldScale) Q_EMIT textScaleChanged();
    if (reducedMotion() != wasReduced) Q_EMIT reducedMotionChanged();
}

bool Appearance::dark() const {
    if (style_ != Style::Desktop) return style_ == Style::Dark;
    return desktopDark_ ? *desktopDark_ : paletteIsDark();
}

double Appearance::textScale() const {
    const double scale =
        textScale_ ? *textScale_ : (desktopTextScale_ ? *desktopTextScale_ : scaleOfFont());
    return std::clamp(scale, kSmallestTextScale, kLargestTextScale);
}

bool Appearance::reducedMotion() const {
    return reducedMotion_.value_or(desktopReducedMotion_.value_or(false));
}

void Appearance::setStyle(Style style) {
    change([&] { style_ = style; });
}

void Appearance::setTextScale(std::optional<double> scale) {
    change([&] { textScale_ = scale; });
}

void Appearance::setReducedMotion(std::optional<bool> reduced) {
    change([&] { reducedMotion_ = reduced; });
}

void Appearance::followDesktop() {
    if (portal_ == nullptr) portal_ = new Portal(*this);
}

void Appearance::takeSetting(const QString& group, const QString& key, const QVariant& value) {
    change([&] {
        if (group == kAppearanceGroup && key == kColorScheme) {
            const uint scheme = value.toUInt();
            if (scheme == kPreferDark || scheme == kPreferLight) {
                desktopDark_ = scheme == kPreferDark;
            } else {
                desktopDark_.reset();
            }
        } else if (group == kGnomeGroup && key == kTextScaling) {
            const double scale = value.toDouble();
            if (scale > 0.0) desktopTextScale_ = scale;
        } else if (group == kGnomeGroup && key == kAnimations) {
            desktopReducedMotion_ = !value.toBool();
        }
    });
}

bool Appearance::eventFilter(QObject* watched, QEvent* event) {
    // The palette or the font has changed already, so there is no "before" to compare with.
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange) Q_EMIT darkChanged();
    if (watched == qApp && event->type() == QEvent::ApplicationFontChange)
        Q_EMIT textScaleChanged();
    return QObject::eventFilter(watched, event);
}

}  // namespace sweepwright::ui

#include "Appearance.moc"
