#pragma once

#include <QObject>

#include "platform/queue/DispatchQueue.h"

namespace sweepwright::ui {

/// Lets Qt's loop run the main queue's jobs for as long as this lives. Made, used and destroyed on
/// the thread of that loop.
class MainQueueHook : public QObject {
  public:
    explicit MainQueueHook(platform::MainQueue& queue);
    ~MainQueueHook() override;

  private:
    platform::MainQueue& queue_;
};

}  // namespace sweepwright::ui
