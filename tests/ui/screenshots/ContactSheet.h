#pragma once

#include <QImage>
#include <QList>
#include <QPair>
#include <QString>

namespace sweepwright::test {

/// Many pictures of one size on one, small, each under its name.
class ContactSheet {
  public:
    void add(const QString& name, const QImage& picture);
    [[nodiscard]] int count() const { return static_cast<int>(cells_.size()); }
    /// Holds at least one picture.
    [[nodiscard]] QImage image() const;

  private:
    QList<QPair<QString, QImage>> cells_;  ///< the pictures already small
};

}  // namespace sweepwright::test
