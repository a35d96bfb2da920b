#pragma once

#include "platform/base/Error.h"

namespace sweepwright::ui {

class Presenter;
class Texts;

/// Tells a person that a change they made could not be stored, with the reason; presents nothing
/// when `stored` is no error. Without a presenter there is nobody to tell.
void presentSaveFailure(Presenter* presenter, const Texts& texts, const platform::Result<>& stored);

}  // namespace sweepwright::ui
