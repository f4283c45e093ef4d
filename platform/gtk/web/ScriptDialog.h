#pragma once

#include <webkit/webkit.h>

#include <memory>

namespace harbrook::gtk {

/// A question of a page's script that waits for its answer. If nobody ever answers, it is answered with "no"
/// when the last reference goes, so that the page does not hang.
class ScriptDialog {
public:
    explicit ScriptDialog(WebKitScriptDialog* dialog) : dialog_(webkit_script_dialog_ref(dialog)) {}

    /// Lets the page go on. Only the first call counts.
    void answer(bool confirmed) {
        if (!dialog_) return;
        const auto type = webkit_script_dialog_get_dialog_type(dialog_.get());
        if (type == WEBKIT_SCRIPT_DIALOG_CONFIRM || type == WEBKIT_SCRIPT_DIALOG_BEFORE_UNLOAD_CONFIRM) {
            webkit_script_dialog_confirm_set_confirmed(dialog_.get(), confirmed);
        }
        dialog_.reset();
    }

private:
    // The engine closes a dialog when its last reference goes. Closing it by name while the engine is still
    // announcing it (an answer at once, or none for `prompt`) makes WebKitGTK 2.50 use it after it is gone.
    struct Unref {
        void operator()(WebKitScriptDialog* dialog) const { webkit_script_dialog_unref(dialog); }
    };
    std::unique_ptr<WebKitScriptDialog, Unref> dialog_;
};

} // namespace harbrook::gtk
