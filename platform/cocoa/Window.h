#pragma once

#include "platform/Window.h"
#include "platform/cocoa/Frameworks.h"

namespace harbrook::cocoa {

class Window final : public harbrook::Window {
public:
    explicit Window(NSWindow* window) : window_(window) {}

    /// What `window` stands for; `window` must be one of this platform's.
    [[nodiscard]] static NSWindow* nativeOf(harbrook::Window& window);

    void setTitle(const std::string& title) override;
    void setTitleVisibility(TitleVisibility visibility) override;
    void setTitlebarAppearsTransparent(bool flag) override;
    void setTitlebarSeparatorStyle(TitlebarSeparatorStyle style) override;
    void setBackgroundColor(const Color& color) override;
    void setMinSize(Size size) override;
    void setContentView(std::shared_ptr<harbrook::View> view) override;
    void setReleasedWhenClosed(bool flag) override;
    void center() override;
    void setFrameAutosaveName(const std::string& name) override;
    void makeKeyAndOrderFront() override;
    void zoom() override;
    void performWindowDragWithEvent(const harbrook::Event& event) override;
    std::uint32_t styleMask() override;
    Rect frame() override;
    std::shared_ptr<harbrook::View> standardWindowButton(WindowButton button) override;
    std::int64_t windowNumber() override;

private:
    NSWindow* window_;
};

class Event final : public harbrook::Event {
public:
    explicit Event(NSEvent* event) : event_(event) {}

    EventType type() const override;
    [[nodiscard]] NSEvent* native() const { return event_; }

private:
    NSEvent* event_;
};

} // namespace harbrook::cocoa
