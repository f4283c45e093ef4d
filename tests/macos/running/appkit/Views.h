#pragma once

#include "tests/macos/running/foundation/Foundation.h"

#include <map>
#include <vector>

namespace harbrook::running {

/// What every view knows; views of any class have it.
struct ViewState {
    NSRect frame = {};
    /// Not kept: the superview keeps its subviews.
    NSView* superview = nil;
    std::vector<Kept<NSView*>> subviews;
    bool postsFrameChanges = false;
    bool fillsSuperview = false;
};

[[nodiscard]] ViewState& viewState(NSView* view);
void forgetView(NSView* view);

} // namespace harbrook::running
