#include "ui/welcome/WelcomeViewController.h"

#include "platform/log/Log.h"
#include "ui/presentation/Addresses.h"
#include "ui/presentation/Presenter.h"

namespace sweepwright::ui {

WelcomeViewController::WelcomeViewController(Texts& texts, platform::UserDefaults& defaults,
                                             UrlOpener& opener)
    : ScreenController(QUrl(QStringLiteral("qrc:/qt/qml/Sweepwright/Welcome/WelcomeView.qml"))),
      texts_(texts),
      defaults_(defaults),
      opener_(opener) {
    connect(&texts_, &Texts::changed, this, &WelcomeViewController::textsChanged);
}

void WelcomeViewController::open(std::string_view address) {
    const QUrl url(QString::fromUtf8(address.data(), static_cast<qsizetype>(address.size())));
    opener_.open(url, [](bool) {});
}

void WelcomeViewController::websiteButtonTapped() {
    open(addresses::kWebsite);
}

void WelcomeViewController::wechatButtonTapped() {
    open(addresses::kWeChat);
}

void WelcomeViewController::githubButtonTapped() {
    open(addresses::kRepository);
}

void WelcomeViewController::closeButtonTapped() {
    const platform::Result<> stored = defaults_.set(kShownKey, platform::PropertyList(true));
    if (!stored) platform::log("❌ {}", stored.error().description);
    if (presenter() != nullptr) presenter()->dismiss(this);
}

}  // namespace sweepwright::ui
