#pragma once

#include <QAnimationDriver>
#include <QImage>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QQuickRenderControl>
#include <QQuickWindow>
#include <memory>

namespace sweepwright::test {

/// While it lives, no time passes for animations and the timers of views: an indicator stands where
/// it begins, and what takes no time ends at once.
class StoppedClock final : public QAnimationDriver {
  public:
    StoppedClock() {
        install();
        start();
    }

    [[nodiscard]] qint64 elapsed() const override { return 0; }

  protected:
    /// Where a driver does not run, the processor's clock counts.
    void stop() override {}
};

/// What canvases draw with. One serves for all of them and keeps what it has compiled.
class Graphics {
  public:
    Graphics();
    void use();
    [[nodiscard]] QOpenGLContext& context() { return context_; }

  private:
    QOffscreenSurface surface_;
    QOpenGLContext context_;
};

/// What a window is drawn on that is on no display. It is drawn when draw() is called and at no
/// other time, so that a picture depends on the state alone and not on what was drawn before.
class Canvas {
  public:
    /// `window` was made with `control` and has its size.
    Canvas(Graphics& graphics, QQuickWindow& window, QQuickRenderControl& control);
    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    [[nodiscard]] QImage draw();

  private:
    Graphics& graphics_;
    QQuickRenderControl& control_;
    std::unique_ptr<QOpenGLFramebufferObject> pixels_;
};

}  // namespace sweepwright::test
