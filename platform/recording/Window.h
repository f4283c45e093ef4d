#pragma once

#include "platform/Window.h"
#include "platform/recording/View.h"

#include <array>
#include <memory>
#include <optional>
#include <string>

namespace harbrook::recording {

/// Where the desktop itself puts the title bar and its buttons, each time it lays them out. Points.
struct TitlebarLayout {
    double height = 28;
    Size button = {14, 16};
    double buttonX = 7;
    double pitch = 20;
    double buttonY = 6;
    /// Buttons that the window has, in the order close, miniaturize, zoom.
    std::array<bool, 3> has = {true, true, true};
    /// Whether the title-bar view follows the size of its container.
    bool fillsContainer = true;
};

/// A window with the views of its title bar. Changes of size, title, key state and the like lay the title bar
/// out again the desktop's way, as AppKit does, before anybody is told of them.
class Window final : public harbrook::Window, public std::enable_shared_from_this<Window> {
public:
    Window(
        WorldPtr world, NotificationCenter& center, Rect contentRect, std::uint32_t styleMask,
        const TitlebarLayout& layout);

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
    std::uint32_t styleMask() override { return styleMask_; }
    Rect frame() override { return frame_; }
    std::shared_ptr<harbrook::View> standardWindowButton(WindowButton button) override;
    std::int64_t windowNumber() override { return 4711; }

    // What the test looks at.

    [[nodiscard]] const std::string& title() const { return title_; }
    [[nodiscard]] bool isVisible() const { return visible_; }
    [[nodiscard]] const std::optional<Color>& backgroundColor() const { return backgroundColor_; }
    /// The event that the last drag began with; only for comparing.
    [[nodiscard]] const harbrook::Event* dragEvent() const { return dragEvent_; }
    [[nodiscard]] const std::shared_ptr<View>& button(WindowButton which) const;
    [[nodiscard]] const std::shared_ptr<View>& titlebar() const { return titlebar_; }
    [[nodiscard]] const std::shared_ptr<View>& titlebarContainer() const { return container_; }

    // What the user or the desktop does.

    void simulateClose();
    void simulateResize(Size size);
    void simulateEndOfLiveResize() { post(NotificationName::NSWindowDidEndLiveResizeNotification); }
    void simulateBecomeKey() { post(NotificationName::NSWindowDidBecomeKeyNotification); }
    void simulateResignKey() { post(NotificationName::NSWindowDidResignKeyNotification); }
    void simulateDeminiaturize() { post(NotificationName::NSWindowDidDeminiaturizeNotification); }
    void simulateChangeOfScreen() { post(NotificationName::NSWindowDidChangeScreenNotification); }
    /// Announces full screen, then enters it.
    void simulateEnterFullScreen();
    void simulateExitFullScreen();
    /// Puts the title bar where the desktop would have it, as every change of the window does. The views tell
    /// their observers; the window tells nobody.
    void layOutTitlebar();
    /// A frame that an earlier run left under the autosave name.
    void setSavedFrame(Rect frame) { savedFrame_ = frame; }

private:
    void note(const std::string& operation);
    void fillScreen();
    void unfillScreen();
    void post(NotificationName name);

    WorldPtr world_;
    NotificationCenter& center_;
    TitlebarLayout layout_;
    Rect frame_;
    std::uint32_t styleMask_;
    Size minSize_;
    std::string title_;
    std::optional<Color> backgroundColor_;
    const harbrook::Event* dragEvent_ = nullptr;
    bool visible_ = false;
    bool releasedWhenClosed_ = true;
    bool released_ = false;
    std::optional<Rect> savedFrame_;
    /// The window's own frame, while it fills the screen.
    std::optional<Rect> ownFrame_;
    std::shared_ptr<View> frameView_;
    std::shared_ptr<View> container_;
    std::shared_ptr<View> titlebar_;
    std::array<std::shared_ptr<View>, 3> buttons_;
    std::shared_ptr<View> contentView_;
};

} // namespace harbrook::recording
