#include "platform/gtk/window/View.h"

namespace harbrook::gtk {

View::View(GObjectPtr<GtkWidget> widget, NotificationCenter& center)
    : widget_(std::move(widget)), center_(center) {}

void View::setFrame(Rect frame) {
    if (frame == frame_) return;
    frame_ = frame;
    frameDidChange();
    if (postsFrameChanges_) {
        center_.post(NotificationName::NSViewFrameDidChangeNotification, static_cast<harbrook::View*>(this));
    }
}

void View::setFrameOrigin(Point origin) {
    setFrame({origin, frame_.size});
}

void View::addSubview(std::shared_ptr<harbrook::View> view) {
    auto native = std::dynamic_pointer_cast<View>(view);
    if (!native) return;
    native->superview_ = weak_from_this();
    subviews_.push_back(native);
    didAddSubview(*native);
}

void View::didAddSubview(View& view) {
    gtk_widget_set_parent(view.widget(), widget_.get());
}

} // namespace harbrook::gtk
