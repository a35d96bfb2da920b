#pragma once

#include "ui/presentation/UrlOpener.h"

namespace sweepwright::ui {

/// Opens addresses with the desktop's own services.
class DesktopUrlOpener : public UrlOpener {
  public:
    /// True where a program is registered for the scheme.
    [[nodiscard]] bool canOpen(const QUrl& url) const override;
    void open(const QUrl& url, const Completion& completion) override;
    [[nodiscard]] bool canOpenAddress(const QByteArray& address) const override;
    void openAddress(const QByteArray& address, const Completion& completion) override;
};

}  // namespace sweepwright::ui
