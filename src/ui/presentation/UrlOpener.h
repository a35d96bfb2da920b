#pragma once

#include <QUrl>
#include <functional>

namespace sweepwright::ui {

/// Opens addresses in other applications.
class UrlOpener {
  public:
    using Completion = std::function<void(bool opened)>;

    virtual ~UrlOpener() = default;

    /// Whether something is there that takes addresses of this scheme.
    [[nodiscard]] virtual bool canOpen(const QUrl& url) const = 0;
    /// Opens `url` and tells, on the main thread, whether that worked.
    virtual void open(const QUrl& url, const Completion& completion) = 0;
};

}  // namespace sweepwright::ui
