#pragma once

#include "platform/Panels.h"
#include "platform/gtk/foundation/SignalConnections.h"

#include <gtk/gtk.h>

#include <memory>
#include <vector>

namespace harbrook::gtk {

/// A dialog with a text and a few buttons that belongs to a window and keeps the user from it. The first
/// button is the default; Escape and closing the dialog count as the last.
class Alert final : public harbrook::Alert, public std::enable_shared_from_this<Alert> {
public:
    void setMessageText(const std::string& text) override { message_ = text; }
    void addButtonWithTitle(const std::string& title) override { titles_.push_back(title); }
    void beginSheetModalForWindow(
        const std::shared_ptr<harbrook::Window>& window, SheetCompletion completionHandler) override;

private:
    struct Choice {
        Alert* alert;
        ModalResponse response;
    };

    [[nodiscard]] GtkWidget* makeMessage();
    [[nodiscard]] GtkWidget* makeButtons();
    void end(ModalResponse response);

    std::string message_;
    std::vector<std::string> titles_;
    SheetCompletion completion_;
    GObjectPtr<GtkWindow> sheet_;
    std::vector<std::unique_ptr<Choice>> choices_;
    /// Keeps the alert until it is answered.
    std::shared_ptr<Alert> self_;
    SignalConnections connections_;
};

[[nodiscard]] std::shared_ptr<harbrook::Alert> makeAlert();

} // namespace harbrook::gtk
