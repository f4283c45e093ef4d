#pragma once

#include "platform/View.h"
#include "platform/gtk/foundation/GObjectPtr.h"
#include "platform/gtk/foundation/NotificationCenter.h"

#include <gtk/gtk.h>

namespace harbrook::gtk {

/// A view over one widget. What a frame means for the widget is decided by the subclass in `frameDidChange`.
class View : public virtual harbrook::View, public std::enable_shared_from_this<View> {
public:
    View(GObjectPtr<GtkWidget> widget, NotificationCenter& center);

    std::shared_ptr<harbrook::View> superview() override { return superview_.lock(); }
    Rect frame() override { return frame_; }
    void setFrame(Rect frame) override;
    void setFrameOrigin(Point origin) override;
    void setPostsFrameChangedNotifications(bool flag) override { postsFrameChanges_ = flag; }
    void addSubview(std::shared_ptr<harbrook::View> view) override;

    [[nodiscard]] GtkWidget* widget() const { return widget_.get(); }
    [[nodiscard]] NotificationCenter& center() const { return center_; }

protected:
    /// Carries a changed frame over to the widget.
    virtual void frameDidChange() {}
    /// Puts the widget of a new subview where it belongs.
    virtual void didAddSubview(View& view);

private:
    GObjectPtr<GtkWidget> widget_;
    NotificationCenter& center_;
    Rect frame_;
    bool postsFrameChanges_ = false;
    std::weak_ptr<View> superview_;
    std::vector<std::shared_ptr<View>> subviews_;
};

} // namespace harbrook::gtk
