#pragma once

#include <QByteArray>
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

    /// The same two for an address that is encoded already. A desktop's takes what QUrl
    /// refuses, too: hosts with signs in them, as some applications have ("filza://view=/var").
    [[nodiscard]] virtual bool canOpenAddress(const QByteArray& address) const {
        return canOpen(QUrl::fromEncoded(address));
    }
    virtual void openAddress(const QByteArray& address, const Completion& completion) {
        open(QUrl::fromEncoded(address), completion);
    }
};

}  // namespace sweepwright::ui
