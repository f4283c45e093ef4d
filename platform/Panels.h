#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace harbrook {

class Window;

/// How a sheet ended, with the platform's values: a panel's OK and Cancel, an alert's buttons from the first
/// on.
using ModalResponse = long;
inline constexpr ModalResponse NSModalResponseCancel = 0;
inline constexpr ModalResponse NSModalResponseOK = 1;
inline constexpr ModalResponse NSAlertFirstButtonReturn = 1000;
inline constexpr ModalResponse NSAlertSecondButtonReturn = 1001;

using SheetCompletion = std::function<void(ModalResponse)>;

/// A short question or notice, attached to a window. It stays until it is answered even if nobody keeps it.
/// Dismissing it without a choice counts as its last button. Main thread.
class Alert {
public:
    virtual ~Alert() = default;
    virtual void setMessageText(const std::string& text) = 0;
    virtual void addButtonWithTitle(const std::string& title) = 0;
    /// Returns at once; `completionHandler` is called once, when the sheet has ended.
    virtual void beginSheetModalForWindow(
        const std::shared_ptr<Window>& window, SheetCompletion completionHandler) = 0;
};

/// The platform's own panel for choosing a file or a folder. It stays until it is answered even if nobody
/// keeps it. Main thread.
class OpenPanel {
public:
    virtual ~OpenPanel() = default;
    virtual void setCanChooseDirectories(bool flag) = 0;
    virtual void setCanChooseFiles(bool flag) = 0;
    virtual void setAllowsMultipleSelection(bool flag) = 0;
    virtual void setCanCreateDirectories(bool flag) = 0;
    /// The title of the default button.
    virtual void setPrompt(const std::string& prompt) = 0;
    virtual void setMessage(const std::string& message) = 0;
    virtual void setDirectoryURL(const std::filesystem::path& directory) = 0;
    /// Returns at once; `completionHandler` is called once, when the sheet has ended.
    virtual void beginSheetModalForWindow(
        const std::shared_ptr<Window>& window, SheetCompletion completionHandler) = 0;
    /// What was chosen, after an OK response: an absolute path with no slash at its end.
    [[nodiscard]] virtual std::optional<std::filesystem::path> chosenURL() = 0;
};

} // namespace harbrook
