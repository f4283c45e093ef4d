#pragma once

#include "platform/View.h"
#include "platform/recording/Notifications.h"
#include "platform/recording/World.h"

#include <memory>
#include <string>
#include <vector>

namespace harbrook::recording {

/// A view with a name for the log. A frame that changes tells its observers inside the change, as AppKit
/// does, and then the subviews that fill this view.
class View : public virtual harbrook::View, public std::enable_shared_from_this<View> {
public:
    View(WorldPtr world, NotificationCenter& center, std::string name)
        : world_(std::move(world)), center_(center), name_(std::move(name)) {}

    std::shared_ptr<harbrook::View> superview() override { return superview_.lock(); }
    Rect frame() override { return frame_; }
    void setFrame(Rect frame) override;
    void setFrameOrigin(Point origin) override;
    void setPostsFrameChangedNotifications(bool flag) override;
    void addSubview(std::shared_ptr<harbrook::View> view) override;

    // For the double and the test.

    [[nodiscard]] const std::string& name() const { return name_; }
    [[nodiscard]] const std::vector<std::shared_ptr<View>>& subviews() const { return subviews_; }
    /// The desktop moves the view of its own accord: no line in the log, but the same notifications.
    void layOut(Rect frame);
    /// Whether the view follows the size of its superview.
    void setFillsSuperview(bool flag) { fillsSuperview_ = flag; }
    /// Puts `view` into this one without a line in the log.
    void adopt(const std::shared_ptr<View>& view);
    void removeFromSuperview();
    /// How often the frame has really changed.
    [[nodiscard]] int frameChanges() const { return frameChanges_; }

protected:
    WorldPtr world_;

    void note(const std::string& operation) { world_->noteOnMain(name_ + " " + operation); }

private:
    NotificationCenter& center_;
    std::string name_;
    Rect frame_;
    bool postsFrameChanges_ = false;
    bool fillsSuperview_ = false;
    int frameChanges_ = 0;
    std::weak_ptr<View> superview_;
    std::vector<std::shared_ptr<View>> subviews_;
};

class TextField final : public View, public harbrook::TextField {
public:
    TextField(WorldPtr world, NotificationCenter& center, std::string text)
        : View(std::move(world), center, "label"), text_(std::move(text)) {}

    void setStringValue(const std::string& text) override;
    void setFont(Font font) override;
    void setTextColor(Color color) override;
    void setAlignment(TextAlignment alignment) override;
    void setMaximumNumberOfLines(int lines) override;
    void setTranslatesAutoresizingMaskIntoConstraints(bool flag) override;
    void setHidden(bool flag) override;

    /// What the user reads.
    [[nodiscard]] const std::string& stringValue() const { return text_; }
    [[nodiscard]] bool isHidden() const { return hidden_; }

private:
    std::string text_;
    bool hidden_ = false;
};

} // namespace harbrook::recording
