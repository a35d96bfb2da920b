#include "ui/screenshots/Canvas.h"

#include <QQuickGraphicsDevice>
#include <QQuickRenderTarget>

namespace sweepwright::test {

Graphics::Graphics() {
    surface_.create();
    if (!context_.create()) qFatal("there is no OpenGL to draw with");
}

void Graphics::use() {
    if (!context_.makeCurrent(&surface_)) qFatal("OpenGL can't be used");
}

Canvas::Canvas(Graphics& graphics, QQuickWindow& window, QQuickRenderControl& control)
    : graphics_(graphics), control_(control) {
    graphics_.use();
    window.setGraphicsDevice(QQuickGraphicsDevice::fromOpenGLContext(&graphics_.context()));
    if (!control_.initialize()) qFatal("a window can't be drawn");
    const double ratio = window.devicePixelRatio();
    const QSize size = window.size() * ratio;
    pixels_ = std::make_unique<QOpenGLFramebufferObject>(size);
    QQuickRenderTarget target = QQuickRenderTarget::fromOpenGLTexture(pixels_->texture(), size);
    target.setDevicePixelRatio(ratio);
    window.setRenderTarget(target);
}

Canvas::~Canvas() {
    graphics_.use();
    control_.invalidate();
}

QImage Canvas::draw() {
    graphics_.use();
    control_.polishItems();
    control_.beginFrame();
    control_.sync();
    control_.render();
    control_.endFrame();
    graphics_.use();
    return pixels_->toImage().convertToFormat(QImage::Format_RGB32);
}

}  // namespace sweepwright::test
