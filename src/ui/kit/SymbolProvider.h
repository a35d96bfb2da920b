#pragma once

#include <QColor>
#include <QQuickImageProvider>
#include <QString>

namespace sweepwright::ui {

/// Draws symbols by name and colour: `image://symbol/house.fill?ff007aff`.
///
/// A symbol is resources/symbols/<name>.svg: black is ink, which takes the colour asked for, white
/// takes ink away again, and nothing else may stand in it. So the file looks in any viewer as it
/// does here, and what is cut out of a shape lets the background through.
class SymbolProvider : public QQuickImageProvider {
  public:
    /// The identifier it is registered by.
    static const QString kIdentifier;

    SymbolProvider();

    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;

    /// The symbol in a square of `pixels`; a null image when there is none of this name.
    static QImage symbol(const QString& name, int pixels, const QColor& color);
};

}  // namespace sweepwright::ui
