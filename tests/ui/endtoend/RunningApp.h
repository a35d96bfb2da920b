#pragma once

#include <QLocalSocket>
#include <QProcess>
#include <QRectF>
#include <QString>
#include <cstdint>
#include <string>

#include <xcb/xcb.h>

#include "support/TemporaryDevice.h"

namespace sweepwright::test {

/// A display of its own, on the first free number.
class VirtualDisplay {
  public:
    VirtualDisplay();
    ~VirtualDisplay();
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;

    /// ":99"; empty when there is no display, which has failed the test.
    [[nodiscard]] const QString& name() const { return name_; }

    /// The pointer goes there and presses its button, as a person's does; pixels.
    void click(QPointF at);
    /// Turns the wheel downwards by one notch where the pointer is.
    void wheelDown();
    /// Asks every window to close.
    void closeWindows();

  private:
    [[nodiscard]] xcb_atom_t atom(const char* name);
    void fake(std::uint8_t type, std::uint8_t detail, QPointF at = {});

    QProcess server_;
    QString name_;
    xcb_connection_t* connection_ = nullptr;
};

/// The program that is shipped, as a person starts it, on a device folder; with a home folder of
/// its own.
class RunningApp {
  public:
    RunningApp(VirtualDisplay& display, const std::string& deviceFolder);
    ~RunningApp();
    RunningApp(const RunningApp&) = delete;
    RunningApp& operator=(const RunningApp&) = delete;

    /// Where the item of this object name or text is, once it is in sight and at rest. Empty, and
    /// the test fails, when it does not come.
    QRectF find(const char* nameOrText);
    /// Clicks on it.
    void click(const char* nameOrText);
    /// Turns the wheel over the window until the item is wholly above `bottom`, in pixels.
    void scrollTo(const char* name, double bottom);
    /// Closes the window, as the button in its frame does, and answers the program's status.
    int close();

  private:
    VirtualDisplay& display_;
    TemporaryFolder home_;
    QProcess program_;
    QLocalSocket probe_;
};

}  // namespace sweepwright::test
