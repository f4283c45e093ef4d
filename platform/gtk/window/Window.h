#pragma once

#include "platform/Window.h"
#include "platform/gtk/app/MenuBar.h"
#include "platform/gtk/window/FrameAutosave.h"
#include "platform/gtk/window/PointerPress.h"
#include "platform/gtk/window/ResizeEdges.h"
#include "platform/gtk/window/TitlebarButtons.h"
#include "platform/gtk/window/WindowState.h"
#include "platform/gtk/window/X11Placement.h"

#include <gtk/gtk.h>

#include <memory>
#include <optional>

namespace harbrook::gtk {

class Application;
class MainMenu;

/// A window with the toolkit's own frame (shadow, resize edges, tiling, the window manager's menu), whose
/// content reaches up to the top edge. Over the content stand the three title-bar buttons and, while it is
/// used, the menu bar.
class Window final : public harbrook::Window, public std::enable_shared_from_this<Window> {
public:
    Window(Application& application, NotificationCenter& center, Rect contentRect, std::uint32_t styleMask);
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    ~Window() override;

    void setTitle(const std::string& title) override;
    /// The title is for task switchers and the like; no title bar shows it.
    void setTitleVisibility(TitleVisibility /*visibility*/) override {}
    void setTitlebarAppearsTransparent(bool /*flag*/) override {}
    void setTitlebarSeparatorStyle(TitlebarSeparatorStyle /*style*/) override {}
    void setBackgroundColor(const Color& color) override;
    void setMinSize(Size size) override;
    void setContentView(std::shared_ptr<harbrook::View> view) override;
    /// A window here is never released by closing it.
    void setReleasedWhenClosed(bool /*flag*/) override {}

    void center() override;
    void setFrameAutosaveName(const std::string& name) override;

    /// The first time, the window is shown by the event loop, ahead of everything else that it has to do:
    /// making it visible takes long enough to hold up the steps of a launch.
    void makeKeyAndOrderFront() override;
    /// What the desktop has a double click on a title bar do, unless the user has chosen otherwise: maximizes
    /// the window, and back.
    void zoom() override;
    void performWindowDragWithEvent(const Event& event) override;

    std::uint32_t styleMask() override;
    Rect frame() override;
    std::shared_ptr<harbrook::View> standardWindowButton(WindowButton button) override;
    std::int64_t windowNumber() override;

    [[nodiscard]] GtkWindow* native() const { return window_.get(); }
    [[nodiscard]] std::string title() const;
    [[nodiscard]] bool isVisible() const { return gtk_widget_get_visible(GTK_WIDGET(window_.get())); }
    /// Hides the window.
    void orderOut();
    void setMainMenu(const MainMenu& menu);
    void dismissMenuBar();
    /// The press of the left button that is still held over the content, if there is one.
    [[nodiscard]] std::shared_ptr<const Event> pressedEvent() { return press_.current(); }

private:
    void connectSignals();
    void show();
    void contentSizeDidChange(int width, int height);
    void toggleFullScreen();
    void willEnterFullScreen();
    void fullScreenDidChange();
    void moveFocusBetweenPageAndTitlebar();
    void saveFrame();
    void saveFrameSoon();
    void post(NotificationName name);

    Application& application_;
    NotificationCenter& center_;
    std::uint32_t styleMask_;
    GObjectPtr<GtkWindow> window_;
    GObjectPtr<GtkOverlay> overlay_;
    GObjectPtr<GtkCssProvider> style_;
    std::shared_ptr<View> contentView_;
    std::optional<Color> backgroundColor_;
    std::shared_ptr<void> appearanceObserver_;
    std::unique_ptr<MenuBar> menuBar_;
    GObjectPtr<GtkEventController> editingShortcuts_;
    ResizeEdges edges_;
    TitlebarButtons titlebar_;
    PointerPress press_;
    WindowState state_;
    X11Placement placement_;
    std::optional<FrameAutosave> autosave_;
    /// Where the window is while it is not maximized.
    std::optional<Point> ownTopLeft_;
    /// It has been said that full screen comes, by the window itself or by the desktop.
    bool entersFullScreen_ = false;
    /// Whether it is to be maximized when it is shown the next time.
    bool showsMaximized_ = false;
    Size size_;
    guint pendingShow_ = 0;
    guint pendingSave_ = 0;
    guint liveResizeEnd_ = 0;
    SignalConnections connections_;
};

[[nodiscard]] std::shared_ptr<harbrook::Window> makeWindow(
    Application& application, NotificationCenter& center, Rect contentRect, std::uint32_t styleMask);

/// The toolkit's window behind `window`, or null.
[[nodiscard]] GtkWindow* nativeWindow(const std::shared_ptr<harbrook::Window>& window);

} // namespace harbrook::gtk
