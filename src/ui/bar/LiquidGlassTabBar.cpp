#include "ui/bar/LiquidGlassTabBar.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/log/Log.h"

namespace sweepwright::ui {

LiquidGlassTabBar::LiquidGlassTabBar(std::vector<Item> items,
                                     platform::OperatingSystemVersion version)
    : items_(std::move(items)), glass_(version.major >= kFirstGlassVersion) {
    if (glass_) {
        platform::log("📱 iOS 26+ 检测 - 使用原生 Liquid Glass 设计");
    } else {
        platform::log("🎨 iOS 26 以下: 手动实现磨砂玻璃和胶囊形状");
    }
}

QColor LiquidGlassTabBar::colorFromARGB(quint32 argb) {
    return QColor::fromRgba(argb);
}

void LiquidGlassTabBar::setSelectedIndex(int index, bool animated) {
    if (index == selectedIndex_ || index < 0 || index >= count()) return;
    selectedIndex_ = index;
    Q_EMIT selectedIndexChanged();
    updateSliderPosition(animated);
}

void LiquidGlassTabBar::tabBarDidSelectItem(int tag) {
    if (tag == selectedIndex_ || tag < 0 || tag >= count()) return;
    setSelectedIndex(tag);
    if (delegate_ != nullptr) delegate_->liquidGlassTabBarDidSelectItemAtIndex(tag);
}

double LiquidGlassTabBar::itemWidth() const {
    return items_.empty() ? 0.0 : width_ / static_cast<double>(items_.size());
}

int LiquidGlassTabBar::indexAt(double x) const {
    const double index = std::floor(x / itemWidth());
    return static_cast<int>(std::clamp(index, 0.0, static_cast<double>(count() - 1)));
}

double LiquidGlassTabBar::centerOfItem(int index) const {
    return (index + 0.5) * itemWidth() - width_ / 2.0;
}

void LiquidGlassTabBar::panBegan(double x) {
    if (glass_ || itemWidth() <= 0.0) return;
    dragging_ = true;
    Q_EMIT sliderChanged();
    updateItemHighlight(indexAt(x));
}

void LiquidGlassTabBar::panChanged(double x) {
    if (!dragging_ || itemWidth() <= 0.0) return;
    updateItemHighlight(indexAt(x));
    placeSlider(x - width_ / 2.0, false);
}

void LiquidGlassTabBar::panEnded(double x) {
    if (!dragging_ || itemWidth() <= 0.0) return;
    dragging_ = false;
    const int index = indexAt(x);
    if (index != selectedIndex_) {
        setSelectedIndex(index);
        if (delegate_ != nullptr) delegate_->liquidGlassTabBarDidSelectItemAtIndex(index);
    }
    updateSliderPosition(true);
    updateItemHighlight(-1);
}

void LiquidGlassTabBar::updateItemHighlight(int index) {
    const int previous = std::exchange(highlightedIndex_, index);
    if (previous == index) return;
    for (const int changed : {previous, index}) {
        if (changed >= 0) {
            const QModelIndex at = this->index(changed);
            Q_EMIT dataChanged(at, at, {ScaleRole});
        }
    }
    Q_EMIT highlightedIndexChanged();
}

void LiquidGlassTabBar::updateSliderPosition(bool animated) {
    placeSlider(centerOfItem(selectedIndex_), animated);
}

void LiquidGlassTabBar::placeSlider(double centerX, bool animated) {
    sliderAnimated_ = animated;
    sliderCenterX_ = centerX;
    Q_EMIT sliderChanged();
}

void LiquidGlassTabBar::setWidth(double width) {
    if (width == width_) return;
    width_ = width;
    Q_EMIT sizeChanged();
    updateSliderPosition(false);
}

void LiquidGlassTabBar::setHeight(double height) {
    if (height == height_) return;
    height_ = height;
    Q_EMIT sizeChanged();
    updateSliderPosition(false);
}

int LiquidGlassTabBar::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant LiquidGlassTabBar::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const Item& item = items_[static_cast<std::size_t>(index.row())];
    switch (role) {
        case TitleRole:
            return item.title;
        case ImageRole:
            return item.image;
        case ScaleRole:
            return index.row() == highlightedIndex_ ? kHighlightScale : 1.0;
        default:
            return {};
    }
}

QHash<int, QByteArray> LiquidGlassTabBar::roleNames() const {
    return {{TitleRole, "title"}, {ImageRole, "image"}, {ScaleRole, "itemScale"}};
}

}  // namespace sweepwright::ui
