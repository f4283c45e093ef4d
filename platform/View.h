#pragma once

#include "platform/Geometry.h"
#include "platform/Text.h"

#include <memory>
#include <string>
#include <vector>

namespace harbrook {

/// A rectangle of the window. Frames are in the coordinates of the superview, y upward. Main thread.
class View {
public:
    virtual ~View() = default;

    /// The view that holds this one, or none. The same object every time.
    [[nodiscard]] virtual std::shared_ptr<View> superview() = 0;
    [[nodiscard]] virtual Rect frame() = 0;
    /// Moves and sizes the view. A frame that really changes posts `NSViewFrameDidChangeNotification`, if
    /// that was asked for, before the call returns.
    virtual void setFrame(Rect frame) = 0;
    virtual void setFrameOrigin(Point origin) = 0;
    virtual void setPostsFrameChangedNotifications(bool flag) = 0;
    virtual void addSubview(std::shared_ptr<View> view) = 0;
};

/// A text of a few lines that the user cannot edit.
class TextField : public virtual View {
public:
    virtual void setStringValue(const std::string& text) = 0;
    virtual void setFont(Font font) = 0;
    virtual void setTextColor(Color color) = 0;
    virtual void setAlignment(TextAlignment alignment) = 0;
    virtual void setMaximumNumberOfLines(int lines) = 0;
    virtual void setTranslatesAutoresizingMaskIntoConstraints(bool flag) = 0;
    virtual void setHidden(bool flag) = 0;
};

enum class LayoutAttribute { centerX, centerY, width };
enum class LayoutRelation { equal, lessThanOrEqual };

/// A rule of layout: an attribute of `item` is equal to, or at most, the same attribute of `toItem` plus
/// `constant` points; without `toItem`, the constant alone.
struct LayoutConstraint {
    std::shared_ptr<View> item;
    LayoutAttribute attribute;
    LayoutRelation relation = LayoutRelation::equal;
    std::shared_ptr<View> toItem;
    double constant = 0;
};

} // namespace harbrook
