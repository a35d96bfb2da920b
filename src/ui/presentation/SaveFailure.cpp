#include "ui/presentation/SaveFailure.h"

#include "ui/presentation/Presenter.h"
#include "ui/presentation/Texts.h"

namespace sweepwright::ui {

void presentSaveFailure(Presenter* presenter, const Texts& texts,
                        const platform::Result<>& stored) {
    if (stored || presenter == nullptr) return;
    auto alert = std::make_unique<AlertController>(AlertController::Alert, texts("Cannot Save"),
                                                   texts("Cannot Save Message"));
    alert->addTip(QString::fromStdString(stored.error().description)).addAction(texts("OK"));
    presenter->present(std::move(alert));
}

}  // namespace sweepwright::ui
