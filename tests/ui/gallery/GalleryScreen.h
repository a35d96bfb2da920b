#pragma once

#include <QtQml/qqmlregistration.h>

#include "ui/presentation/ScreenController.h"
#include "ui/presentation/ScrollReporter.h"
#include "ui/presentation/Texts.h"

namespace sweepwright::test {

/// A screen that shows pieces of the kit, for pictures and tests.
class GalleryScreen : public sweepwright::ui::ScreenController {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by tests")
    Q_PROPERTY(sweepwright::ui::ScrollReporter* scrolling READ scrolling CONSTANT)

  public:
    /// Drawn by <name>.qml of the gallery. `key` is the title's.
    GalleryScreen(const QString& name, const ui::Texts& texts, std::string_view key,
                  platform::NotificationCenter& notifications, bool largeTitle = false)
        : ScreenController(
              QUrl(QStringLiteral("qrc:/qt/qml/Sweepwright/Gallery/%1.qml").arg(name))),
          texts_(texts),
          scrolling_(notifications),
          largeTitle_(largeTitle) {
        setTitle(texts(key));
    }

    [[nodiscard]] bool prefersLargeTitles() const override { return largeTitle_; }
    [[nodiscard]] ui::ScrollReporter* scrolling() { return &scrolling_; }
    [[nodiscard]] Q_INVOKABLE QString text(const QString& key) const {
        return texts_(key.toStdString());
    }
    using ScreenController::addRightBarButtonItem;

    /// What the views tell of, for tests.
    Q_INVOKABLE void note(const QString& what) { notes.append(what); }
    QStringList notes;

  private:
    const ui::Texts& texts_;
    ui::ScrollReporter scrolling_;
    bool largeTitle_;
};

}  // namespace sweepwright::test
