#pragma once

namespace harbrook::gtk {

/// Settles, by being made, everything about the web engine that has to be settled before GTK starts: the
/// renderer on machines without a graphics device, that its processes do not wait for the desktop portal, and
/// the question whether the engine's sandbox works here, whose answer is waited for when the first web view
/// is made.
///
/// All this can be told to the libraries by environment variable only. So it has to be made while the process
/// has a single thread, and after the environment that programs started from here are to get has been noted.
class RenderingPolicy {
public:
    RenderingPolicy();
};

/// Whether the machine has a render node. Without one, a software stack under GL only costs time and memory
/// (on a bare machine about 160 ms of the start and 170 MiB), so neither the toolkit nor the engine uses GL.
[[nodiscard]] bool hasRenderNode();

} // namespace harbrook::gtk
