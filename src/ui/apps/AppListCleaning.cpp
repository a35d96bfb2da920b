#include <QPointer>
#include <utility>

#include "engine/Failures.h"
#include "engine/StorageAnalyzer.h"
#include "protection/AppWhitelistManager.h"
#include "ui/apps/AppListViewController.h"
#include "ui/presentation/CleanOutcome.h"
#include "ui/presentation/Presenter.h"

namespace sweepwright::ui {

namespace {

// Takes an alert away even when the screen that showed it is gone.
class ShownAlert {
  public:
    ShownAlert(Presenter* presenter, AlertController* alert)
        : presenter_(presenter), alert_(alert) {}

    [[nodiscard]] AlertController* operator->() const { return alert_; }
    explicit operator bool() const { return !alert_.isNull(); }
    void dismiss() const {
        if (presenter_ && alert_) presenter_->dismiss(alert_);
    }

  private:
    QPointer<Presenter> presenter_;
    QPointer<AlertController> alert_;
};

}  // namespace

std::unique_ptr<AlertController> AppListViewController::makeAlert(const QString& title,
                                                                  const QString& message) const {
    return std::make_unique<AlertController>(AlertController::Alert, title, message);
}

void AppListViewController::show(std::unique_ptr<AlertController> alert) {
    if (presenter() != nullptr) presenter()->present(std::move(alert));
}

void AppListViewController::tell(const QString& title, const QString& message) {
    auto alert = makeAlert(title, message);
    alert->addAction(texts()("OK"));
    show(std::move(alert));
}

AlertController* AppListViewController::showCleaning(const QString& message) {
    if (presenter() == nullptr) return nullptr;
    auto alert = makeAlert(texts()("Cleaning"), message);
    alert->addSpinner();
    return presenter()->present(std::move(alert));
}

void AppListViewController::tellOutcome(bool success, std::uint64_t bytes,
                                        const std::optional<platform::Error>& error,
                                        const Failures& failures) {
    if (success) {
        tell(texts()("Clean Completed"),
             cleanOutcomeMessage(texts(), bytes, CleanFigure::WhatWasThere, failures));
        return;
    }
    const bool explained = error && !error->description.empty();
    tell(texts()("Clean Failed"),
         explained ? QString::fromStdString(error->description) : texts()("Clean Failed"));
}

void AppListViewController::showCleanConfirmationForApp(const ListedAppPointer& app) {
    const bool system = app->info().isSystemApp;
    const QString prefix = system ? texts()("Clean App Cache Warning") : QString();
    const QString message = texts()(
        "Clean App Cache Message",
        {app->displayName().toStdString(), StorageAnalyzer::formatBytes(app->info().totalSize)});
    auto alert =
        makeAlert(texts()(system ? "Clean System App Cache" : "Clean App Cache"), prefix + message);
    alert
        ->addAction(texts()("Clean"), AlertAction::Destructive,
                    [self = QPointer<AppListViewController>(this), app] {
                        if (self) self->cleanCacheForApp(app, {});
                    })
        .addAction(texts()("Cancel"), AlertAction::Cancel);
    show(std::move(alert));
}

void AppListViewController::cleanCacheForApp(const ListedAppPointer& app,
                                             const SwipeAction::Completion& completion) {
    const std::string name = app->displayName().toStdString();
    const ShownAlert alert(
        presenter(),
        showCleaning(
            QStringLiteral("%1 %2...").arg(texts()("Cleaning Message"), app->displayName())));
    const QPointer<AppListViewController> self(this);
    const auto failures = std::make_shared<Failures>();
    services_.apps.cleanCacheForApp(
        app->identifier(),
        [self, alert, name](const std::string&, double fraction) {
            if (!self || !alert) return;
            alert->setMessage(
                self->texts()("Clean App Cache Message Format", {fraction * 100.0, name}));
        },
        [self, alert, completion, failures](bool success, std::uint64_t bytes, const auto& error) {
            alert.dismiss();
            if (!self) return;
            self->tellOutcome(success, bytes, error, *failures);
            if (success) self->loadApps();
            if (completion) completion(success);
        },
        failures);
}

void AppListViewController::cleanSelectedApps() {
    const std::vector<int> rows = rows_.selectedRows();
    if (rows.empty()) return tell(texts()("No Apps Selected"));
    ListedApps apps;
    for (const int row : rows) {
        const ListedAppPointer& app = currentApps_[static_cast<std::size_t>(row)];
        if (!isProtected(*app)) apps.push_back(app);
    }
    if (apps.empty()) return tell(texts()("All selected apps are in whitelist"));
    auto alert = makeAlert(texts()("Clean Selected Apps"),
                           texts()("Clean Selected Apps Message", {apps.size()}));
    alert
        ->addAction(texts()("Clean"), AlertAction::Destructive,
                    [self = QPointer<AppListViewController>(this), apps] {
                        if (self) self->performBatchClean(apps);
                    })
        .addAction(texts()("Cancel"), AlertAction::Cancel);
    show(std::move(alert));
}

void AppListViewController::performBatchClean(const ListedApps& apps) {
    std::vector<std::string> identifiers;
    identifiers.reserve(apps.size());
    for (const ListedAppPointer& app : apps)
        identifiers.push_back(app->identifier());
    const ShownAlert alert(
        presenter(), showCleaning(QStringLiteral("%1 %2 %3...")
                                      .arg(texts()("Cleaning Message"),
                                           QString::number(identifiers.size()), texts()("apps"))));
    const QPointer<AppListViewController> self(this);
    const auto failures = std::make_shared<Failures>();
    services_.apps.cleanCacheForApps(
        std::move(identifiers),
        [self, alert](const std::string& name, double fraction) {
            if (!self || !alert) return;
            alert->setMessage(QStringLiteral("%1 %2... %3%")
                                  .arg(self->texts()("Cleaning Message"),
                                       QString::fromStdString(name),
                                       QString::number(fraction * 100.0, 'f', 0)));
            alert->setProgress(fraction);
        },
        [self, alert, failures](bool success, std::uint64_t bytes, const auto& error) {
            alert.dismiss();
            if (!self) return;
            self->tellOutcome(success, bytes, error, *failures);
            self->setEditing(false);
            self->loadApps();
        },
        failures);
}

}  // namespace sweepwright::ui
