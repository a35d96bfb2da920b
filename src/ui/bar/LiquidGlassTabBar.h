#pragma once

#include <QAbstractListModel>
#include <QColor>
#include <QString>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "platform/device/Device.h"

namespace sweepwright::ui {

/// Hears of selections that a person makes on the bar.
class LiquidGlassTabBarDelegate {
  public:
    virtual ~LiquidGlassTabBarDelegate() = default;
    virtual void liquidGlassTabBarDidSelectItemAtIndex(int index) = 0;
};

/// The floating tab bar: which item is selected, where the slider is, what a drag does. From
/// version 26 of the system on it is a pane of glass without slider or drag; below, a frosted
/// capsule with a slider that can be dragged across the items. Points throughout.
class LiquidGlassTabBar : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the shell")
    Q_PROPERTY(bool glass READ glass CONSTANT)
    Q_PROPERTY(int count READ count CONSTANT)
    Q_PROPERTY(int selectedIndex READ selectedIndex NOTIFY selectedIndexChanged)
    Q_PROPERTY(int highlightedIndex READ highlightedIndex NOTIFY highlightedIndexChanged)
    Q_PROPERTY(double width READ width WRITE setWidth NOTIFY sizeChanged)
    Q_PROPERTY(double height READ height WRITE setHeight NOTIFY sizeChanged)
    Q_PROPERTY(double sliderWidth READ sliderWidth NOTIFY sizeChanged)
    Q_PROPERTY(double sliderHeight READ sliderHeight NOTIFY sizeChanged)
    Q_PROPERTY(double sliderCenterX READ sliderCenterX NOTIFY sliderChanged)
    Q_PROPERTY(bool sliderAnimated READ sliderAnimated NOTIFY sliderChanged)
    Q_PROPERTY(double sliderAlpha READ sliderAlpha NOTIFY sliderChanged)
    Q_PROPERTY(double sliderScale READ sliderScale NOTIFY sliderChanged)
    Q_PROPERTY(bool dragging READ dragging NOTIFY sliderChanged)

  public:
    enum Role { TitleRole = Qt::UserRole, ImageRole, ScaleRole };

    struct Item {
        QString title;  ///< not shown; what a screen reader says
        QString image;  ///< a symbol's name
    };

    static constexpr double kRestingAlpha = 0.25;
    static constexpr double kDraggedAlpha = 0.7;
    static constexpr double kDraggedScale = 1.2;
    static constexpr double kHighlightScale = 1.15;
    static constexpr double kSliderHeightShare = 0.72;
    static constexpr double kSliderAspect = 1.25;
    static constexpr int kFirstGlassVersion = 26;

    LiquidGlassTabBar(std::vector<Item> items, platform::OperatingSystemVersion version);

    /// The colour of a 32-bit value: alpha, red, green and blue from the highest byte down.
    static QColor colorFromARGB(quint32 argb);

    /// Told of a person's selections; may be none. Must outlive this or be taken away.
    void setDelegate(LiquidGlassTabBarDelegate* delegate) { delegate_ = delegate; }

    [[nodiscard]] bool glass() const { return glass_; }
    [[nodiscard]] int count() const { return static_cast<int>(items_.size()); }
    [[nodiscard]] int selectedIndex() const { return selectedIndex_; }
    /// The item under the finger during a drag, -1 when none.
    [[nodiscard]] int highlightedIndex() const { return highlightedIndex_; }

    /// Selects an item without telling the delegate; an index outside or the same changes nothing.
    void setSelectedIndex(int index, bool animated = true);
    /// A person has chosen the item with this tag.
    Q_INVOKABLE void tabBarDidSelectItem(int tag);

    /// A drag across the items, `x` from the bar's left edge. Ignored in the glass form.
    Q_INVOKABLE void panBegan(double x);
    Q_INVOKABLE void panChanged(double x);
    Q_INVOKABLE void panEnded(double x);

    [[nodiscard]] double width() const { return width_; }
    void setWidth(double width);
    [[nodiscard]] double height() const { return height_; }
    void setHeight(double height);
    [[nodiscard]] double itemWidth() const;
    [[nodiscard]] double sliderWidth() const { return sliderHeight() * kSliderAspect; }
    [[nodiscard]] double sliderHeight() const { return height_ * kSliderHeightShare; }
    /// Of the slider's centre, from the bar's centre.
    [[nodiscard]] double sliderCenterX() const { return sliderCenterX_; }
    /// Whether the slider goes to where it now is on a spring.
    [[nodiscard]] bool sliderAnimated() const { return sliderAnimated_; }
    [[nodiscard]] double sliderAlpha() const { return dragging_ ? kDraggedAlpha : kRestingAlpha; }
    [[nodiscard]] double sliderScale() const { return dragging_ ? kDraggedScale : 1.0; }
    [[nodiscard]] bool dragging() const { return dragging_; }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

  Q_SIGNALS:
    void selectedIndexChanged();
    void highlightedIndexChanged();
    void sizeChanged();
    void sliderChanged();

  private:
    [[nodiscard]] int indexAt(double x) const;
    [[nodiscard]] double centerOfItem(int index) const;
    void updateSliderPosition(bool animated);
    void placeSlider(double centerX, bool animated);
    void updateItemHighlight(int index);

    std::vector<Item> items_;
    bool glass_;
    LiquidGlassTabBarDelegate* delegate_ = nullptr;
    int selectedIndex_ = 0;
    int highlightedIndex_ = -1;
    bool dragging_ = false;
    double width_ = 0.0;
    double height_ = 0.0;
    double sliderCenterX_ = 0.0;
    bool sliderAnimated_ = false;
};

}  // namespace sweepwright::ui
