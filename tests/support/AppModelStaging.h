#pragma once
// Sets what a screen is to show without the work that would lead there. For tests of screens and for their
// pictures; the model's own tests do the work.

#include "App/AppModel.h"

namespace cairnfield {

class AppModelStaging {
public:
    /// The state that the model publishes, to be written to.
    [[nodiscard]] static AppState& state(AppModel& model) { return model.state_; }
};

}  // namespace cairnfield
