#pragma once

#include "platform/Geometry.h"

#include <glib.h>

#include <optional>
#include <string>

namespace harbrook::gtk {

/// What is remembered of a window between runs. Lengths are points; y grows downward from the top of the
/// screens.
struct SavedFrame {
    /// Only where the desktop lets a window know its place.
    std::optional<Point> topLeft;
    Size size;
    bool isMaximized = false;
    bool operator==(const SavedFrame&) const = default;
};

/// The frame that a group of a key file describes, if it makes sense on its own: positive lengths, not beyond
/// any screen's size.
[[nodiscard]] std::optional<SavedFrame> savedFrame(GKeyFile* file, const std::string& group);

/// The frame saved under one name: a group of a key file in the user's state directory (XDG_STATE_HOME).
class FrameAutosave {
public:
    explicit FrameAutosave(std::string name);

    /// What an earlier run left, if it makes sense.
    [[nodiscard]] std::optional<SavedFrame> load() const;
    /// Writes the file anew, with the other groups as they are, unless nothing has changed. A state directory
    /// that cannot be written to is nothing the user could be told.
    void save(const SavedFrame& frame);

private:
    std::string name_;
    std::optional<SavedFrame> saved_;
};

} // namespace harbrook::gtk
