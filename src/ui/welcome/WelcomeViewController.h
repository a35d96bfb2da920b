#pragma once

#include <QString>

#include <QtQml/qqmlregistration.h>

#include "platform/device/UserDefaults.h"
#include "ui/presentation/ScreenController.h"
#include "ui/presentation/Texts.h"
#include "ui/presentation/UrlOpener.h"

namespace sweepwright::ui {

/// The greeting that lies over the tabs until "Get Started" is pressed once.
class WelcomeViewController : public sweepwright::ui::ScreenController {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the shell")
    Q_PROPERTY(QString greeting READ greeting NOTIFY textsChanged)
    Q_PROPERTY(QString subtitle READ subtitle NOTIFY textsChanged)
    Q_PROPERTY(QString notice READ notice NOTIFY textsChanged)
    Q_PROPERTY(QString websiteTitle READ websiteTitle NOTIFY textsChanged)
    Q_PROPERTY(QString wechatTitle READ wechatTitle NOTIFY textsChanged)
    Q_PROPERTY(QString githubTitle READ githubTitle NOTIFY textsChanged)
    Q_PROPERTY(QString closeTitle READ closeTitle NOTIFY textsChanged)

  public:
    /// The user default that says it has been shown.
    static constexpr std::string_view kShownKey = "hasShownWelcome";

    /// All must outlive this.
    WelcomeViewController(Texts& texts, platform::UserDefaults& defaults, UrlOpener& opener);

    [[nodiscard]] QString greeting() const { return texts_("Welcome to Sweepwright"); }
    [[nodiscard]] QString subtitle() const { return texts_("Welcome Subtitle"); }
    [[nodiscard]] QString notice() const { return texts_("Welcome Notice"); }
    [[nodiscard]] QString websiteTitle() const { return texts_("Visit Website"); }
    [[nodiscard]] QString wechatTitle() const { return texts_("Follow WeChat Official Account"); }
    [[nodiscard]] QString githubTitle() const { return texts_("GitHub"); }
    [[nodiscard]] QString closeTitle() const { return texts_("Get Started"); }

    /// Open the maker's pages; one that can't be opened does nothing. The greeting stays.
    Q_INVOKABLE void websiteButtonTapped();
    Q_INVOKABLE void wechatButtonTapped();
    Q_INVOKABLE void githubButtonTapped();
    /// Remembers for good that the greeting was shown, and closes it.
    Q_INVOKABLE void closeButtonTapped();

  Q_SIGNALS:
    void textsChanged();

  private:
    void open(std::string_view address);

    Texts& texts_;
    platform::UserDefaults& defaults_;
    UrlOpener& opener_;
};

}  // namespace sweepwright::ui
