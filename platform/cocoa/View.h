#pragma once

#include "platform/View.h"
#include "platform/cocoa/Frameworks.h"

NS_ASSUME_NONNULL_BEGIN

namespace harbrook::cocoa {

/// A view over an `NSView`. While one lives it is the only one of its native view.
class View : public virtual harbrook::View, public std::enable_shared_from_this<View> {
public:
    explicit View(NSView* view);
    View(const View&) = delete;
    View& operator=(const View&) = delete;
    ~View() override;

    /// The view over `view`, or none over none.
    [[nodiscard]] static std::shared_ptr<View> over(NSView* _Nullable view);
    /// What `view` stands for; `view` must be one of this platform's.
    [[nodiscard]] static NSView* nativeOf(harbrook::View& view);

    std::shared_ptr<harbrook::View> superview() override { return over(view_.superview); }
    Rect frame() override;
    void setFrame(Rect frame) override;
    void setFrameOrigin(Point origin) override;
    void setPostsFrameChangedNotifications(bool flag) override;
    void addSubview(std::shared_ptr<harbrook::View> view) override;

private:
    NSView* view_;
};

class TextField final : public View, public harbrook::TextField {
public:
    explicit TextField(NSTextField* field) : View(field), field_(field) {}

    void setStringValue(const std::string& text) override;
    void setFont(Font font) override;
    void setTextColor(Color color) override;
    void setAlignment(TextAlignment alignment) override;
    void setMaximumNumberOfLines(int lines) override;
    void setTranslatesAutoresizingMaskIntoConstraints(bool flag) override;
    void setHidden(bool flag) override;

private:
    NSTextField* field_;
};

void activateConstraints(const std::vector<LayoutConstraint>& constraints);

} // namespace harbrook::cocoa

NS_ASSUME_NONNULL_END
