// The cleans of the home screen and their alerts.
#include <QPointer>
#include <utility>

#include <fmt/format.h>

#include "engine/Failures.h"
#include "localization/LocalizedFormat.h"
#include "ui/home/ViewController.h"
#include "ui/presentation/Presenter.h"

namespace sweepwright::ui {

namespace {

constexpr double kPercent = 100.0;

// Makes room for the spinner.
constexpr const char* kProgressRoom = "\n\n\n";

}  // namespace

bool ViewController::isCovered() const {
    return presenter() != nullptr && presenter()->active();
}

std::unique_ptr<AlertController> ViewController::makeAlert(const QString& title,
                                                           const QString& message) {
    return std::make_unique<AlertController>(AlertController::Alert, title, message);
}

void ViewController::present(std::unique_ptr<AlertController> alert) {
    if (presenter() != nullptr) presenter()->present(std::move(alert));
}

void ViewController::tell(std::string_view titleKey, const QString& message) {
    auto alert = makeAlert(texts(titleKey), message);
    alert->addAction(texts("OK"));
    present(std::move(alert));
}

void ViewController::confirm(std::string_view titleKey, std::string_view messageKey,
                             const std::function<void()>& clean) {
    if (isCovered()) return;
    auto alert = makeAlert(texts(titleKey), texts(messageKey));
    alert->addAction(texts("Clean"), AlertAction::Destructive, [self = QPointer(this), clean] {
        if (self) clean();
    });
    alert->addAction(texts("Cancel"), AlertAction::Cancel);
    present(std::move(alert));
}

void ViewController::cleanCacheTapped() {
    cleanWithType(CleanType::Cache, texts("Cache Files"));
}

void ViewController::cleanTempTapped() {
    cleanWithType(CleanType::TempFiles, texts("Temp Files"));
}

void ViewController::cleanCookieTapped() {
    cleanWithType(CleanType::Cookies, texts("Cookie & Web Data"));
}

void ViewController::cleanLogTapped() {
    cleanWithType(CleanType::SystemLogs, texts("System Logs"));
}

void ViewController::cleanAllTapped() {
    confirm("Confirm Clean", "Confirm Clean Message",
            [this] { cleanWithType(CleanType::All, texts("Clean Items")); });
}

void ViewController::cleanAppCacheTapped() {
    confirm("Clean Third Party App Cache", "Clean Third Party App Cache Message",
            [this] { performCleanAppCache(); });
}

void ViewController::cleanWithType(CleanType type, const QString& /*title*/) {
    performClean(
        texts("Cleaning"),
        [this](const std::string& item, double fraction) {
            return QString::fromStdString(fmt::format("{} {:.0f}%\n{}", format("Cleaning Message"),
                                                      fraction * kPercent, item));
        },
        CleanFigure::WhatWent,
        [this, type](auto progress, auto completion, auto observer) {
            services_.engine.cleanWithType(type, std::move(progress), std::move(completion),
                                           std::move(observer));
        },
        [this] {
            updateStorageInfo();
            performInitialScan();
        });
}

void ViewController::performCleanAppCache() {
    performClean(
        texts("Clean Third Party App Cache"),
        [this](const std::string& item, double fraction) {
            return QString::fromStdString(localization::formatLocalized(
                format("Clean App Cache Message Format"), {fraction * kPercent, item}));
        },
        CleanFigure::WhatWasThere,
        [this](auto progress, auto completion, auto observer) {
            services_.apps.cleanAllThirdPartyAppCaches(std::move(progress), std::move(completion),
                                                       std::move(observer));
        },
        [this] {
            services_.apps.invalidateAllCache();
            updateStorageInfo();
            scanThirdPartyAppCaches();
        });
}

void ViewController::performClean(const QString& alertTitle, const Message& message,
                                  CleanFigure figure, const StartClean& start,
                                  std::function<void()> afterSuccess) {
    if (presenter() == nullptr || isCovered()) return;
    auto made = makeAlert(alertTitle, QString::fromLatin1(kProgressRoom));
    made->addSpinner();
    const QPointer<AlertController> alert = presenter()->present(std::move(made));
    const auto failures = std::make_shared<Failures>();
    start(
        [self = QPointer(this), alert, message](const std::string& item, double fraction) {
            if (!self || !alert) return;
            alert->setMessage(message(item, fraction));
            alert->setProgress(fraction);
        },
        [self = QPointer(this), alert, figure, failures, afterSuccess = std::move(afterSuccess)](
            bool success, std::uint64_t cleanedBytes, const auto& error) {
            if (!self || self->presenter() == nullptr) return;
            self->presenter()->dismiss(alert, [&] {
                self->cleanDidComplete({success, cleanedBytes, error}, figure, *failures,
                                       afterSuccess);
            });
        },
        failures);
}

void ViewController::cleanDidComplete(const CleanEnd& end, CleanFigure figure,
                                      const Failures& failures,
                                      const std::function<void()>& afterSuccess) {
    if (!end.success) {
        tell("Clean Failed",
             QString::fromStdString(end.error ? end.error->description : std::string()));
        return;
    }
    tell("Clean Completed",
         cleanOutcomeMessage(services_.texts, end.cleanedBytes, figure, failures));
    afterSuccess();
}

}  // namespace sweepwright::ui
