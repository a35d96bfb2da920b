#pragma once

#include <QObject>
#include <QString>
#include <functional>

#include <QtQml/qqmlregistration.h>

namespace sweepwright::ui {

/// One button of an alert or an action sheet.
class AlertAction : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by a screen's controller")
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(Style style READ style CONSTANT)
    /// Whether it is the one set apart from the others: the current choice of a list.
    Q_PROPERTY(bool current READ current CONSTANT)

  public:
    enum Style { Default, Cancel, Destructive };
    Q_ENUM(Style)
    using Handler = std::function<void()>;

    AlertAction(QString title, Style style, Handler handler, bool current, QObject* parent)
        : QObject(parent),
          title_(std::move(title)),
          style_(style),
          handler_(std::move(handler)),
          current_(current) {}

    [[nodiscard]] const QString& title() const { return title_; }
    [[nodiscard]] Style style() const { return style_; }
    [[nodiscard]] bool current() const { return current_; }
    [[nodiscard]] const Handler& handler() const { return handler_; }

  private:
    QString title_;
    Style style_;
    Handler handler_;
    bool current_;
};

}  // namespace sweepwright::ui
