#include "platform/gtk/window/OpenPanel.h"

#include "platform/gtk/foundation/Mnemonic.h"
#include "platform/gtk/window/PortalParent.h"
#include "platform/gtk/window/Window.h"

#include <utility>

namespace harbrook::gtk {

void OpenPanel::beginSheetModalForWindow(
    const std::shared_ptr<harbrook::Window>& window, SheetCompletion completionHandler) {
    self_ = shared_from_this();
    completion_ = std::move(completionHandler);
    window_ = window;
    if (!choosesFolders()) {
        showToolkitPanel();
        return;
    }
    withPortalParent(nativeWindow(window), [weak = weak_from_this()](const std::string& parent) {
        if (const auto self = weak.lock()) self->askPortal(parent);
    });
}

bool OpenPanel::choosesFolders() const {
    // Either files or folders: neither kind of dialog offers both.
    return canChooseDirectories_ && !canChooseFiles_;
}

void OpenPanel::askPortal(const std::string& parent) {
    const auto answered = [this](const std::optional<std::filesystem::path>& folder) { end(folder); };
    portal_.emplace(PortalFolderChooser::Question{parent, message_, prompt_, directory_}, answered, [this] {
        showToolkitPanel();
    });
}

void OpenPanel::showToolkitPanel() {
    const auto action =
        choosesFolders() ? GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER : GTK_FILE_CHOOSER_ACTION_OPEN;
    chooser_ = GObjectPtr<GtkFileChooserNative>::adopt(gtk_file_chooser_native_new(
        message_.c_str(), nativeWindow(window_.lock()), action, labelWithoutMnemonic(prompt_).c_str(),
        nullptr));
    auto* chooser = GTK_FILE_CHOOSER(chooser_.get());
    gtk_native_dialog_set_modal(GTK_NATIVE_DIALOG(chooser_.get()), TRUE);
    gtk_file_chooser_set_select_multiple(chooser, allowsMultipleSelection_);
    gtk_file_chooser_set_create_folders(chooser, canCreateDirectories_);
    if (!directory_.empty()) {
        const auto directory = GObjectPtr<GFile>::adopt(g_file_new_for_path(directory_.c_str()));
        gtk_file_chooser_set_current_folder(chooser, directory.get(), nullptr);
    }
    connections_.add(
        chooser_.get(), "response",
        [](GtkNativeDialog*, int response, void* self) noexcept {
            static_cast<OpenPanel*>(self)->responded(response);
        },
        this);
    gtk_native_dialog_show(GTK_NATIVE_DIALOG(chooser_.get()));
}

void OpenPanel::responded(int response) {
    gtk_native_dialog_hide(GTK_NATIVE_DIALOG(chooser_.get()));
    std::optional<std::filesystem::path> chosen;
    if (response == GTK_RESPONSE_ACCEPT) {
        const auto file =
            GObjectPtr<GFile>::adopt(gtk_file_chooser_get_file(GTK_FILE_CHOOSER(chooser_.get())));
        const GCharPtr path(file ? g_file_get_path(file.get()) : nullptr);
        if (path) chosen = path.get();
    }
    end(chosen);
}

void OpenPanel::end(const std::optional<std::filesystem::path>& chosen) {
    if (!self_) return;
    const auto self = std::exchange(self_, nullptr);
    forgetPortalParent(nativeWindow(window_.lock()));
    chosen_ = chosen;
    const auto completion = std::exchange(completion_, nullptr);
    if (completion) completion(chosen_ ? NSModalResponseOK : NSModalResponseCancel);
}

std::shared_ptr<harbrook::OpenPanel> makeOpenPanel() {
    return std::make_shared<OpenPanel>();
}

} // namespace harbrook::gtk
