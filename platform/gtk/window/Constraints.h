#pragma once

#include "platform/View.h"

#include <vector>

namespace harbrook::gtk {

/// Carries out the rules that the toolkit's own layout can express: an item's centre on its superview's
/// centre, and a greatest width of a text. Others are without effect.
void activateConstraints(const std::vector<LayoutConstraint>& constraints);

} // namespace harbrook::gtk
