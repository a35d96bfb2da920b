#include "ui/presentation/AlertController.h"

#include <algorithm>
#include <utility>

namespace sweepwright::ui {

AlertController::AlertController(Style style, QString title, QString message)
    : style_(style), title_(std::move(title)), message_(std::move(message)) {}

AlertController& AlertController::add(const QString& title, AlertAction::Style style,
                                      AlertAction::Handler handler, bool current) {
    actions_.append(new AlertAction(title, style, std::move(handler), current, this));
    Q_EMIT actionsChanged();
    return *this;
}

AlertController& AlertController::addAction(const QString& title, AlertAction::Style style,
                                            AlertAction::Handler handler) {
    return add(title, style, std::move(handler), false);
}

AlertController& AlertController::addCurrentAction(const QString& title,
                                                   AlertAction::Handler handler) {
    return add(title, AlertAction::Default, std::move(handler), true);
}

AlertController& AlertController::addTextField(const QString& placeholder) {
    hasTextField_ = true;
    placeholder_ = placeholder;
    return *this;
}

AlertController& AlertController::addSpinner() {
    busy_ = true;
    return *this;
}

AlertController& AlertController::addTip(const QString& tip) {
    setTip(tip);
    return *this;
}

AlertController& AlertController::makeArticle() {
    article_ = true;
    return *this;
}

void AlertController::setTip(const QString& tip) {
    if (tip == tip_) return;
    tip_ = tip;
    Q_EMIT tipChanged();
}

void AlertController::setMessage(const QString& message) {
    if (message == message_) return;
    message_ = message;
    Q_EMIT messageChanged();
}

void AlertController::setText(const QString& text) {
    if (text == text_) return;
    text_ = text;
    Q_EMIT textChanged();
}

void AlertController::setProgress(double progress) {
    if (progress == progress_) return;
    progress_ = progress;
    Q_EMIT progressChanged();
}

void AlertController::setAnchor(const QRectF& anchor) {
    if (anchor == anchor_) return;
    anchor_ = anchor;
    Q_EMIT anchorChanged();
}

AlertAction* AlertController::action(const QString& title) const {
    const auto found = std::find_if(actions_.begin(), actions_.end(), [&](const AlertAction* each) {
        return each->title() == title;
    });
    return found == actions_.end() ? nullptr : *found;
}

AlertAction* AlertController::cancelAction() const {
    const auto found = std::find_if(actions_.begin(), actions_.end(), [](const AlertAction* each) {
        return each->style() == AlertAction::Cancel;
    });
    return found == actions_.end() ? nullptr : *found;
}

void AlertController::choose(AlertAction* action) {
    if (isChosen_ || !actions_.contains(action)) return;
    isChosen_ = true;
    // Dismissing may destroy this, and the action with it.
    const AlertAction::Handler handler = action->handler();
    Q_EMIT chosen();
    if (handler) handler();
}

void AlertController::cancel() {
    if (AlertAction* action = cancelAction()) choose(action);
}

}  // namespace sweepwright::ui
