#include "platform/gtk/window/TitlebarButtons.h"

#include <cmath>

namespace harbrook::gtk {

namespace {

/// Where the buttons are if nobody places them: the measures of a plain title bar.
constexpr double defaultHeight = 32;
constexpr double defaultMargin = 12;
constexpr double defaultPitch = 22;

} // namespace

class TitlebarButtons::Titlebar final : public View {
public:
    Titlebar(NotificationCenter& center, std::shared_ptr<Layout> layout)
        : View({}, center), layout_(std::move(layout)) {}

private:
    void frameDidChange() override { layout_->invalidate(); }
    /// The buttons' widgets stand in the overlay.
    void didAddSubview(View& /*view*/) override {}

    std::shared_ptr<Layout> layout_;
};

class TitlebarButtons::Container final : public View {
public:
    Container(NotificationCenter& center, std::shared_ptr<Titlebar> titlebar)
        : View({}, center), titlebar_(std::move(titlebar)) {}

private:
    void frameDidChange() override { titlebar_->setFrame({{0, 0}, frame().size}); }
    void didAddSubview(View& /*view*/) override {}

    std::shared_ptr<Titlebar> titlebar_;
};

class TitlebarButtons::Button final : public View {
public:
    Button(NotificationCenter& center, GObjectPtr<GtkWidget> widget, std::shared_ptr<Layout> layout)
        : View(std::move(widget), center), layout_(std::move(layout)) {}

private:
    void frameDidChange() override { layout_->invalidate(); }

    std::shared_ptr<Layout> layout_;
};

TitlebarButtons::TitlebarButtons(GtkOverlay* overlay, NotificationCenter& center, Size windowSize)
    : layout_(std::make_shared<Layout>(Layout{GTK_WIDGET(overlay)})) {
    titlebar_ = std::make_shared<Titlebar>(center, layout_);
    container_ = std::make_shared<Container>(center, titlebar_);
    container_->addSubview(titlebar_);
    container_->setFrame({{0, windowSize.height - defaultHeight}, {windowSize.width, defaultHeight}});

    double x = defaultMargin;
    for (const auto which : {WindowButton::close, WindowButton::miniaturize, WindowButton::zoom}) {
        auto widget = makeTitlebarButton(which);
        gtk_overlay_add_overlay(overlay, widget.get());
        GtkEventController* pointer = gtk_event_controller_motion_new();
        connections_.add(
            pointer, "notify::contains-pointer",
            [](GtkEventControllerMotion* changed, GParamSpec*, void* self) noexcept {
                static_cast<TitlebarButtons*>(self)->showSigns(
                    gtk_event_controller_motion_contains_pointer(changed));
            },
            this);
        gtk_widget_add_controller(widget.get(), pointer);

        auto button = std::make_shared<Button>(center, std::move(widget), layout_);
        titlebar_->addSubview(button);
        button->setFrame(
            {{x, (defaultHeight - titlebarButtonSize) / 2}, {titlebarButtonSize, titlebarButtonSize}});
        buttons_[static_cast<std::size_t>(which)] = std::move(button);
        x += defaultPitch;
    }
}

void TitlebarButtons::showSigns(bool flag) {
    for (const auto& button : buttons_) {
        if (flag) {
            gtk_widget_add_css_class(button->widget(), "near");
        } else {
            gtk_widget_remove_css_class(button->widget(), "near");
        }
    }
}

std::shared_ptr<void> TitlebarButtons::layoutUnderWay() {
    layout_->isUnderWay = true;
    return {layout_.get(), [layout = layout_](Layout*) { layout->isUnderWay = false; }};
}

std::shared_ptr<View> TitlebarButtons::button(WindowButton which) const {
    return buttons_[static_cast<std::size_t>(which)];
}

void TitlebarButtons::windowSizeDidChange(Size from, Size to) {
    Rect frame = container_->frame();
    frame.origin.y += to.height - from.height;
    frame.size.width += to.width - from.width;
    container_->setFrame(frame);
}

void TitlebarButtons::setVisible(bool flag) {
    for (const auto& button : buttons_)
        gtk_widget_set_visible(button->widget(), flag);
}

void TitlebarButtons::grabFocus() {
    gtk_widget_grab_focus(buttons_.front()->widget());
}

std::optional<GdkRectangle> TitlebarButtons::allocation(GtkWidget* widget, int windowHeight) const {
    std::shared_ptr<Button> button;
    for (const auto& each : buttons_) {
        if (each->widget() == widget) button = each;
    }
    if (!button) return std::nullopt;
    const Rect frame = button->frame();
    const Point base = container_->frame().origin;
    const Point inner = titlebar_->frame().origin;
    const double x = base.x + inner.x + frame.origin.x;
    const double y = windowHeight - (base.y + inner.y + frame.origin.y + frame.size.height);
    return GdkRectangle{
        static_cast<int>(std::lround(x)), static_cast<int>(std::lround(y)),
        static_cast<int>(std::lround(frame.size.width)), static_cast<int>(std::lround(frame.size.height))};
}

} // namespace harbrook::gtk
