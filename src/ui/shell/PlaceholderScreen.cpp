#include "ui/shell/PlaceholderScreen.h"

#include <utility>

namespace sweepwright::ui {

PlaceholderScreen::PlaceholderScreen(Texts& texts, std::string titleKey,
                                     platform::NotificationCenter& notifications)
    : ScreenController(QUrl(QStringLiteral("qrc:/qt/qml/Sweepwright/Shell/PlaceholderView.qml"))),
      scrolling_(notifications) {
    setTitle(texts(titleKey));
    connect(&texts, &Texts::changed, this,
            [this, &texts, key = std::move(titleKey)] { setTitle(texts(key)); });
}

}  // namespace sweepwright::ui
