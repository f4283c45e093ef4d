#pragma once

#include "platform/Event.h"
#include "platform/View.h"

#include <cstdint>
#include <memory>
#include <string>

namespace harbrook {

/// Style mask bits, with the platform's values.
enum WindowStyleMask : std::uint32_t {
    NSWindowStyleMaskTitled = 1,
    NSWindowStyleMaskClosable = 2,
    NSWindowStyleMaskMiniaturizable = 4,
    NSWindowStyleMaskResizable = 8,
    NSWindowStyleMaskFullScreen = 16384,
    NSWindowStyleMaskFullSizeContentView = 32768,
};

enum class BackingStore { buffered = 2 };
enum class TitleVisibility { visible = 0, hidden = 1 };
enum class TitlebarSeparatorStyle { automatic = 0, none = 1 };
enum class WindowButton { close = 0, miniaturize = 1, zoom = 2 };

/// A top-level window. Main thread.
class Window {
public:
    virtual ~Window() = default;

    virtual void setTitle(const std::string& title) = 0;
    virtual void setTitleVisibility(TitleVisibility visibility) = 0;
    virtual void setTitlebarAppearsTransparent(bool flag) = 0;
    virtual void setTitlebarSeparatorStyle(TitlebarSeparatorStyle style) = 0;
    virtual void setBackgroundColor(const Color& color) = 0;
    virtual void setMinSize(Size size) = 0;
    virtual void setContentView(std::shared_ptr<View> view) = 0;
    virtual void setReleasedWhenClosed(bool flag) = 0;

    /// Puts the window in the middle of its screen.
    virtual void center() = 0;
    /// From now on the frame is remembered under `name`; one that was remembered by an earlier run takes
    /// effect now.
    virtual void setFrameAutosaveName(const std::string& name) = 0;

    /// Shows the window in front of the others and gives it the keyboard.
    virtual void makeKeyAndOrderFront() = 0;
    /// Toggles between the window's own size and the size that fits its screen.
    virtual void zoom() = 0;
    /// Moves the window with the pointer until the button of `event` is released.
    virtual void performWindowDragWithEvent(const Event& event) = 0;

    [[nodiscard]] virtual std::uint32_t styleMask() = 0;
    [[nodiscard]] virtual Rect frame() = 0;
    /// One of the three buttons of the title bar, or none if the window lacks it. The same object every time.
    [[nodiscard]] virtual std::shared_ptr<View> standardWindowButton(WindowButton button) = 0;
    /// The number by which other programs of the session can address the window.
    [[nodiscard]] virtual std::int64_t windowNumber() = 0;
};

} // namespace harbrook
