#include "ui/presentation/MainQueueHook.h"

#include <QMetaObject>

namespace sweepwright::ui {

MainQueueHook::MainQueueHook(platform::MainQueue& queue) : queue_(queue) {
    const auto wake = [this] {
        QMetaObject::invokeMethod(this, [this] { queue_.drain(); }, Qt::QueuedConnection);
    };
    queue_.setHook(wake);
    // Jobs posted before there was a hook woke nobody.
    wake();
}

MainQueueHook::~MainQueueHook() {
    queue_.setHook({});
}

}  // namespace sweepwright::ui
