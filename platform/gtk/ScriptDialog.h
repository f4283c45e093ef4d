#pragma once

#include <webkit/webkit.h>

#include <memory>

namespace harbrook::gtk {

/// A question of a page's script that waits for its answer. If nobody ever answers, it is answered with "no"
/// when the last reference goes, so that the page does not hang.
class ScriptDialog {
public:
    explicit ScriptDialog(WebKitScriptDialog* dialog) : dialog_(webkit_script_dialog_ref(dialog)) {}
    ScriptDialog(const ScriptDialog&) = delete;
    ScriptDialog& operator=(const ScriptDialog&) = delete;
    ~ScriptDialog() { close(); }

    /// Lets the page go on. Only the first call counts.
    void answer(bool confirmed) {
        if (!dialog_) return;
        const auto type = webkit_script_dialog_get_dialog_type(dialog_.get());
        if (type == WEBKIT_SCRIPT_DIALOG_CONFIRM || type == WEBKIT_SCRIPT_DIALOG_BEFORE_UNLOAD_CONFIRM) {
            webkit_script_dialog_confirm_set_confirmed(dialog_.get(), confirmed);
        }
        close();
    }

private:
    struct Unref {
        void operator()(WebKitScriptDialog* dialog) const { webkit_script_dialog_unref(dialog); }
    };

    void close() {
        if (dialog_) webkit_script_dialog_close(dialog_.get());
        dialog_.reset();
    }

    std::unique_ptr<WebKitScriptDialog, Unref> dialog_;
};

} // namespace harbrook::gtk
