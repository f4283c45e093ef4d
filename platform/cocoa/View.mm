#include "platform/cocoa/View.h"

#include "platform/cocoa/Conversions.h"
#include "platform/cocoa/Drawing.h"

#include <unordered_map>

namespace harbrook::cocoa {

namespace {

/// Main thread, as views are. A native view cannot go while its view holds it, so no key is ever used twice.
std::unordered_map<const void*, View*>& livingViews() {
    static std::unordered_map<const void*, View*> views;
    return views;
}

const void* keyOf(NSView* view) {
    return (__bridge const void*)view;
}

NSLayoutAttribute toNSLayoutAttribute(LayoutAttribute attribute) {
    switch (attribute) {
    case LayoutAttribute::centerX:
        return NSLayoutAttributeCenterX;
    case LayoutAttribute::centerY:
        return NSLayoutAttributeCenterY;
    case LayoutAttribute::width:
        return NSLayoutAttributeWidth;
    }
}

NSLayoutConstraint* toNSLayoutConstraint(const LayoutConstraint& constraint) {
    const auto attribute = toNSLayoutAttribute(constraint.attribute);
    const bool isEqual = constraint.relation == LayoutRelation::equal;
    return [NSLayoutConstraint
        constraintWithItem:View::nativeOf(*constraint.item)
                 attribute:attribute
                 relatedBy:isEqual ? NSLayoutRelationEqual : NSLayoutRelationLessThanOrEqual
                    toItem:constraint.toItem ? View::nativeOf(*constraint.toItem) : nil
                 attribute:constraint.toItem ? attribute : NSLayoutAttributeNotAnAttribute
                multiplier:1
                  constant:constraint.constant];
}

} // namespace

View::View(NSView* view) : view_(view) {
    livingViews().emplace(keyOf(view), this);
}

View::~View() {
    livingViews().erase(keyOf(view_));
}

std::shared_ptr<View> View::over(NSView* _Nullable view) {
    if (!view) return nullptr;
    const auto living = livingViews().find(keyOf(view));
    return living != livingViews().end() ? living->second->shared_from_this() : std::make_shared<View>(view);
}

NSView* View::nativeOf(harbrook::View& view) {
    return dynamic_cast<View&>(view).view_;
}

Rect View::frame() {
    return fromNSRect(view_.frame);
}

void View::setFrame(Rect frame) {
    view_.frame = toNSRect(frame);
}

void View::setFrameOrigin(Point origin) {
    [view_ setFrameOrigin:NSMakePoint(origin.x, origin.y)];
}

void View::setPostsFrameChangedNotifications(bool flag) {
    view_.postsFrameChangedNotifications = flag;
}

void View::addSubview(std::shared_ptr<harbrook::View> view) {
    [view_ addSubview:nativeOf(*view)];
}

void TextField::setStringValue(const std::string& text) {
    field_.stringValue = toNSString(text);
}

void TextField::setFont(Font font) {
    field_.font = toNSFont(font);
}

void TextField::setTextColor(Color color) {
    field_.textColor = toNSColor(color);
}

void TextField::setAlignment(TextAlignment alignment) {
    field_.alignment = alignment == TextAlignment::center ? NSTextAlignmentCenter : NSTextAlignmentNatural;
}

void TextField::setMaximumNumberOfLines(int lines) {
    field_.maximumNumberOfLines = lines;
}

void TextField::setTranslatesAutoresizingMaskIntoConstraints(bool flag) {
    field_.translatesAutoresizingMaskIntoConstraints = flag;
}

void TextField::setHidden(bool flag) {
    field_.hidden = flag;
}

void activateConstraints(const std::vector<LayoutConstraint>& constraints) {
    NSMutableArray<NSLayoutConstraint*>* const native = [NSMutableArray arrayWithCapacity:constraints.size()];
    for (const auto& constraint : constraints)
        [native addObject:toNSLayoutConstraint(constraint)];
    [NSLayoutConstraint activateConstraints:native];
}

} // namespace harbrook::cocoa
