#pragma once

#include <QObject>
#include <QString>

#include <QtQml/qqmlregistration.h>

namespace sweepwright::ui {

/// A button of a navigation bar: a text or a symbol, in which case the text is what a screen
/// reader says.
class BarButtonItem : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by a screen's controller")
    Q_PROPERTY(QString title READ title WRITE setTitle NOTIFY titleChanged)
    Q_PROPERTY(QString symbol READ symbol WRITE setSymbol NOTIFY symbolChanged)
    Q_PROPERTY(bool enabled READ enabled WRITE setEnabled NOTIFY enabledChanged)
    /// Whether it ends something ("Done") and is drawn heavier for that.
    Q_PROPERTY(bool prominent READ prominent WRITE setProminent NOTIFY prominentChanged)

  public:
    using QObject::QObject;

    [[nodiscard]] const QString& title() const { return title_; }
    void setTitle(const QString& title);
    [[nodiscard]] const QString& symbol() const { return symbol_; }
    void setSymbol(const QString& symbol);
    [[nodiscard]] bool enabled() const { return enabled_; }
    void setEnabled(bool enabled);
    [[nodiscard]] bool prominent() const { return prominent_; }
    void setProminent(bool prominent);

    /// What a press does; nothing while it is disabled.
    Q_INVOKABLE void trigger();

  Q_SIGNALS:
    void titleChanged();
    void symbolChanged();
    void enabledChanged();
    void prominentChanged();
    void triggered();

  private:
    QString title_;
    QString symbol_;
    bool enabled_ = true;
    bool prominent_ = false;
};

}  // namespace sweepwright::ui
