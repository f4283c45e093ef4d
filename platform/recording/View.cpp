#include "platform/recording/View.h"

#include "platform/recording/Format.h"

#include <algorithm>

namespace harbrook::recording {

void View::setFrame(Rect frame) {
    note("setFrame: " + format(frame));
    layOut(frame);
}

void View::setFrameOrigin(Point origin) {
    note("setFrameOrigin: " + format(origin));
    layOut({origin, frame_.size});
}

void View::setPostsFrameChangedNotifications(bool flag) {
    note("setPostsFrameChangedNotifications: " + format(flag));
    postsFrameChanges_ = flag;
}

void View::addSubview(std::shared_ptr<harbrook::View> view) {
    const auto own = std::dynamic_pointer_cast<View>(view);
    refuseIf(!own, name_ + " addSubview: a view of another platform");
    note("addSubview: " + own->name());
    adopt(own);
}

void View::layOut(Rect frame) {
    if (frame == frame_) return;
    const bool resized = frame.size != frame_.size;
    frame_ = frame;
    ++frameChanges_;
    if (resized) {
        const auto subviews = subviews_;
        for (const auto& view : subviews) {
            if (view->fillsSuperview_) view->layOut({{0, 0}, frame.size});
        }
    }
    if (postsFrameChanges_) {
        center_.post(NotificationName::NSViewFrameDidChangeNotification, static_cast<harbrook::View*>(this));
    }
}

void View::adopt(const std::shared_ptr<View>& view) {
    refuseIf(!view->superview_.expired(), view->name() + " is already a subview of another view");
    view->superview_ = weak_from_this();
    subviews_.push_back(view);
    if (view->fillsSuperview_) view->layOut({{0, 0}, frame_.size});
}

void View::removeFromSuperview() {
    if (const auto parent = superview_.lock()) {
        std::erase_if(parent->subviews_, [this](const auto& view) { return view.get() == this; });
    }
    superview_.reset();
}

void TextField::setStringValue(const std::string& text) {
    note("setStringValue: " + inQuotes(text));
    text_ = text;
}

void TextField::setFont(Font font) {
    note("setFont: " + format(font));
}

void TextField::setTextColor(Color color) {
    note("setTextColor: " + format(color));
}

void TextField::setAlignment(TextAlignment alignment) {
    note(std::string("setAlignment: ") + (alignment == TextAlignment::center ? "center" : "natural"));
}

void TextField::setMaximumNumberOfLines(int lines) {
    note("setMaximumNumberOfLines: " + std::to_string(lines));
}

void TextField::setTranslatesAutoresizingMaskIntoConstraints(bool flag) {
    note("setTranslatesAutoresizingMaskIntoConstraints: " + format(flag));
}

void TextField::setHidden(bool flag) {
    note("setHidden: " + format(flag));
    hidden_ = flag;
}

} // namespace harbrook::recording
