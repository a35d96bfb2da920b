#pragma once

#include <QObject>
#include <optional>

#include <QtQml/qqmlregistration.h>

class QJSEngine;
class QQmlEngine;

namespace sweepwright::ui {

class SettingsPortal;

/// How the desktop wants things to look: light or dark, how large texts are, whether motion is
/// welcome. What the desktop says can be overruled, by the command line and by tests.
class Appearance : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool dark READ dark NOTIFY darkChanged)
    Q_PROPERTY(double textScale READ textScale NOTIFY textScaleChanged)
    Q_PROPERTY(bool reducedMotion READ reducedMotion NOTIFY reducedMotionChanged)

  public:
    enum class Style { Desktop, Light, Dark };
    Q_ENUM(Style)

    static constexpr double kSmallestTextScale = 0.8;
    static constexpr double kLargestTextScale = 2.0;

    ~Appearance() override;

    /// The process's one, which also the views use.
    static Appearance& shared();
    /// For the QML engine.
    static Appearance* create(QQmlEngine* engine, QJSEngine* script);

    [[nodiscard]] bool dark() const;
    /// Factor on every font size; 1 on a desktop that nobody has changed.
    [[nodiscard]] double textScale() const;
    [[nodiscard]] bool reducedMotion() const;

    /// Overrule the desktop; Style::Desktop and none follow it again.
    void setStyle(Style style);
    void setTextScale(std::optional<double> scale);
    void setReducedMotion(std::optional<bool> reduced);

    /// Asks the desktop's settings portal, without waiting, and follows its changes. Without one
    /// the palette and the font of the platform's theme tell.
    void followDesktop();

    /// Takes what a settings portal says: its group, key and value.
    void takeSetting(const QString& group, const QString& key, const QVariant& value);

  Q_SIGNALS:
    void darkChanged();
    void textScaleChanged();
    void reducedMotionChanged();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    // A constructor that the engine could call would win over create().
    Appearance();

    template <class Change>
    void change(const Change& apply);

    Style style_ = Style::Desktop;
    std::optional<double> textScale_;
    std::optional<bool> reducedMotion_;
    std::optional<bool> desktopDark_;
    std::optional<double> desktopTextScale_;
    std::optional<bool> desktopReducedMotion_;
    SettingsPortal* portal_ = nullptr;
};

}  // namespace sweepwright::ui
