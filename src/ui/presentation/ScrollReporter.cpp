#include "ui/presentation/ScrollReporter.h"

namespace sweepwright::ui {

void ScrollReporter::didScroll(double offsetY) {
    notifications_.post(kNotification, {{std::string(kOffset), offsetY},
                                        {std::string(kLastOffset), lastContentOffsetY_}});
    lastContentOffsetY_ = offsetY;
}

}  // namespace sweepwright::ui
