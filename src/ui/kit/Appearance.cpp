#include "ui/kit/Appearance.h"

#include <QEvent>
#include <QFont>
#include <QGuiApplication>
#include <QJSEngine>
#include <QPalette>
#include <algorithm>

#include "ui/kit/SettingsPortal.h"

namespace sweepwright::ui {

namespace {

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

}  // namespace

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
    if (portal_ != nullptr) return;
    portal_ = new SettingsPortal(this);
    connect(portal_, &SettingsPortal::settingRead, this, &Appearance::takeSetting);
    portal_->start();
}

void Appearance::takeSetting(const QString& group, const QString& key, const QVariant& value) {
    change([&] {
        if (group == portal::kAppearanceGroup && key == portal::kColorScheme) {
            const uint scheme = value.toUInt();
            if (scheme == kPreferDark || scheme == kPreferLight) {
                desktopDark_ = scheme == kPreferDark;
            } else {
                desktopDark_.reset();
            }
        } else if (group == portal::kGnomeGroup && key == portal::kTextScaling) {
            const double scale = value.toDouble();
            if (scale > 0.0) desktopTextScale_ = scale;
        } else if (group == portal::kGnomeGroup && key == portal::kAnimations) {
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
