#include "platform/gtk/window/Alert.h"

#include "platform/gtk/window/Sheet.h"
#include "platform/gtk/window/Window.h"

#include <utility>

namespace harbrook::gtk {

namespace {

constexpr int widestTextInCharacters = 56;
constexpr int highestTextInPoints = 420;
constexpr int gap = 22;

} // namespace

GtkWidget* Alert::makeMessage() {
    GtkWidget* label = gtk_label_new(message_.c_str());
    gtk_label_set_wrap(GTK_LABEL(label), TRUE);
    gtk_label_set_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);
    gtk_label_set_max_width_chars(GTK_LABEL(label), widestTextInCharacters);
    gtk_label_set_xalign(GTK_LABEL(label), 0);
    gtk_label_set_yalign(GTK_LABEL(label), 0);
    gtk_widget_add_css_class(label, "message");

    GtkWidget* scroller = gtk_scrolled_window_new();
    auto* area = GTK_SCROLLED_WINDOW(scroller);
    gtk_scrolled_window_set_policy(area, GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_set_propagate_natural_width(area, TRUE);
    gtk_scrolled_window_set_propagate_natural_height(area, TRUE);
    gtk_scrolled_window_set_max_content_height(area, highestTextInPoints);
    gtk_scrolled_window_set_child(area, label);
    return scroller;
}

GtkWidget* Alert::makeButtons() {
    GtkWidget* row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 10);
    gtk_widget_set_halign(row, GTK_ALIGN_END);
    gtk_box_set_homogeneous(GTK_BOX(row), TRUE);
    ModalResponse response = NSAlertFirstButtonReturn;
    for (const auto& title : titles_) {
        GtkWidget* button = gtk_button_new_with_label(title.c_str());
        gtk_box_prepend(GTK_BOX(row), button);
        const auto clicked = [](GtkButton*, void* data) noexcept {
            const auto choice = *static_cast<Choice*>(data);
            choice.alert->end(choice.response);
        };
        connections_.add(
            button, "clicked", clicked,
            choices_.emplace_back(std::make_unique<Choice>(Choice{this, response++})).get());
        if (choices_.size() > 1) continue;
        gtk_widget_add_css_class(button, "suggested-action");
        gtk_window_set_default_widget(sheet_.get(), button);
    }
    return row;
}

void Alert::beginSheetModalForWindow(
    const std::shared_ptr<harbrook::Window>& window, SheetCompletion completionHandler) {
    if (titles_.empty()) titles_.emplace_back("OK");
    self_ = shared_from_this();
    completion_ = std::move(completionHandler);
    sheet_ = makeSheet(nativeWindow(window), message_);

    GtkWidget* content = gtk_box_new(GTK_ORIENTATION_VERTICAL, gap);
    gtk_box_append(GTK_BOX(content), makeMessage());
    gtk_box_append(GTK_BOX(content), makeButtons());
    setSheetContent(sheet_.get(), content);
    gtk_window_set_focus(sheet_.get(), gtk_window_get_default_widget(sheet_.get()));

    const auto closed = [](GtkWindow*, void* data) noexcept -> gboolean {
        auto& self = *static_cast<Alert*>(data);
        self.end(self.choices_.back()->response);
        return TRUE;
    };
    connections_.add(sheet_.get(), "close-request", closed, this);
    gtk_window_present(sheet_.get());
}

void Alert::end(ModalResponse response) {
    if (!self_) return;
    const auto self = std::exchange(self_, nullptr);
    gtk_window_destroy(sheet_.get());
    const auto completion = std::exchange(completion_, nullptr);
    if (completion) completion(response);
}

std::shared_ptr<harbrook::Alert> makeAlert() {
    return std::make_shared<Alert>();
}

} // namespace harbrook::gtk
