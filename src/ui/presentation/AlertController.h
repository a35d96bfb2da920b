#pragma once

#include <QList>
#include <QObject>
#include <QRectF>
#include <QString>

#include <QtQml/qqmlregistration.h>

#include "ui/presentation/AlertAction.h"

namespace sweepwright::ui {

/// What an alert or an action sheet says and offers. A screen makes one, hands it to a Presenter,
/// and may change its message while it is shown; the view draws it, a test reads it and chooses.
class AlertController : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by a screen's controller")
    Q_PROPERTY(Style style READ style CONSTANT)
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString message READ message WRITE setMessage NOTIFY messageChanged)
    /// Whether the message is a longer text to read, in which a line that begins with "# " is a
    /// heading and one that begins with "• " an item of a list.
    Q_PROPERTY(bool article READ article CONSTANT)
    /// A remark under the message, small and grey.
    Q_PROPERTY(QString tip READ tip WRITE setTip NOTIFY tipChanged)
    Q_PROPERTY(bool hasTextField READ hasTextField CONSTANT)
    Q_PROPERTY(QString placeholder READ placeholder CONSTANT)
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(bool busy READ busy CONSTANT)
    /// How far the work is, from 0 to 1; below 0 while nobody knows.
    Q_PROPERTY(double progress READ progress WRITE setProgress NOTIFY progressChanged)
    Q_PROPERTY(QList<sweepwright::ui::AlertAction*> actions READ actions NOTIFY actionsChanged)
    /// Where a sheet's popover points at, in the window's points; empty: the window's middle.
    Q_PROPERTY(QRectF anchor READ anchor WRITE setAnchor NOTIFY anchorChanged)

  public:
    enum Style { Alert, ActionSheet };
    Q_ENUM(Style)

    static constexpr double kUnknownProgress = -1.0;

    AlertController(Style style, QString title, QString message = {});

    /// The buttons, in the order they are added.
    AlertController& addAction(const QString& title,
                               AlertAction::Style style = AlertAction::Default,
                               AlertAction::Handler handler = {});
    /// As addAction(), set apart from its neighbours as what holds now.
    AlertController& addCurrentAction(const QString& title, AlertAction::Handler handler);
    AlertController& addTextField(const QString& placeholder);
    /// A spinner that turns for as long as the alert is shown.
    AlertController& addSpinner();
    AlertController& addTip(const QString& tip);
    AlertController& makeArticle();

    [[nodiscard]] Style style() const { return style_; }
    [[nodiscard]] const QString& title() const { return title_; }
    [[nodiscard]] const QString& message() const { return message_; }
    void setMessage(const QString& message);
    [[nodiscard]] bool article() const { return article_; }

    [[nodiscard]] const QString& tip() const { return tip_; }
    void setTip(const QString& tip);
    [[nodiscard]] bool hasTextField() const { return hasTextField_; }
    [[nodiscard]] const QString& placeholder() const { return placeholder_; }
    /// What stands in the text field.
    [[nodiscard]] const QString& text() const { return text_; }
    void setText(const QString& text);
    [[nodiscard]] bool busy() const { return busy_; }
    [[nodiscard]] double progress() const { return progress_; }
    void setProgress(double progress);
    [[nodiscard]] const QList<AlertAction*>& actions() const { return actions_; }
    [[nodiscard]] QRectF anchor() const { return anchor_; }
    void setAnchor(const QRectF& anchor);

    /// The action of this title; none when there is none.
    [[nodiscard]] AlertAction* action(const QString& title) const;
    /// The action that closing without a choice stands for; none: it can't be closed so.
    [[nodiscard]] Q_INVOKABLE sweepwright::ui::AlertAction* cancelAction() const;

    /// Chooses an action: the alert goes, then its handler runs. A second choice is ignored.
    Q_INVOKABLE void choose(sweepwright::ui::AlertAction* action);
    /// Chooses the cancel action, if there is one.
    Q_INVOKABLE void cancel();

  Q_SIGNALS:
    void messageChanged();
    void tipChanged();
    void textChanged();
    void progressChanged();
    void actionsChanged();
    void anchorChanged();
    /// An action was chosen; the presenter dismisses the alert on it.
    void chosen();

  private:
    AlertController& add(const QString& title, AlertAction::Style style,
                         AlertAction::Handler handler, bool current);

    Style style_;
    QString title_;
    QString message_;
    QString tip_;
    QString placeholder_;
    QString text_;
    bool article_ = false;
    bool hasTextField_ = false;
    bool busy_ = false;
    bool isChosen_ = false;
    double progress_ = kUnknownProgress;
    QList<AlertAction*> actions_;
    QRectF anchor_;
};

}  // namespace sweepwright::ui
