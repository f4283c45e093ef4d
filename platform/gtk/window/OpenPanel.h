#pragma once

#include "platform/Panels.h"
#include "platform/gtk/foundation/SignalConnections.h"
#include "platform/gtk/window/PortalFolderChooser.h"

#include <gtk/gtk.h>

#include <memory>
#include <optional>

namespace harbrook::gtk {

/// The desktop's own dialog for choosing files or folders: the portal's for folders, where there is a portal;
/// else the toolkit's.
class OpenPanel final : public harbrook::OpenPanel, public std::enable_shared_from_this<OpenPanel> {
public:
    void setCanChooseDirectories(bool flag) override { canChooseDirectories_ = flag; }
    void setCanChooseFiles(bool flag) override { canChooseFiles_ = flag; }
    void setAllowsMultipleSelection(bool flag) override { allowsMultipleSelection_ = flag; }
    void setCanCreateDirectories(bool flag) override { canCreateDirectories_ = flag; }
    void setPrompt(const std::string& prompt) override { prompt_ = prompt; }
    void setMessage(const std::string& message) override { message_ = message; }
    void setDirectoryURL(const std::filesystem::path& directory) override { directory_ = directory; }
    void beginSheetModalForWindow(
        const std::shared_ptr<harbrook::Window>& window, SheetCompletion completionHandler) override;
    std::optional<std::filesystem::path> chosenURL() override { return chosen_; }

private:
    [[nodiscard]] bool choosesFolders() const;
    void askPortal(const std::string& parent);
    void showToolkitPanel();
    void responded(int response);
    void end(const std::optional<std::filesystem::path>& chosen);

    bool canChooseDirectories_ = false;
    bool canChooseFiles_ = true;
    bool allowsMultipleSelection_ = false;
    bool canCreateDirectories_ = true;
    std::string prompt_ = "Open";
    std::string message_;
    std::filesystem::path directory_;
    std::optional<std::filesystem::path> chosen_;
    SheetCompletion completion_;
    std::weak_ptr<harbrook::Window> window_;
    std::optional<PortalFolderChooser> portal_;
    GObjectPtr<GtkFileChooserNative> chooser_;
    /// Keeps the panel until it is answered.
    std::shared_ptr<OpenPanel> self_;
    SignalConnections connections_;
};

[[nodiscard]] std::shared_ptr<harbrook::OpenPanel> makeOpenPanel();

} // namespace harbrook::gtk
