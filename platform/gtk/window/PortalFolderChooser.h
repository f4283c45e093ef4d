#pragma once

#include "platform/gtk/foundation/GObjectPtr.h"

#include <gio/gio.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace harbrook::gtk {

/// The version of a portal's interface, as its answer to the question for that property; 0 for any other
/// answer.
[[nodiscard]] guint32 portalVersion(GVariant* answer);

/// What the user did with the portal's dialog, from the arguments of its response.
struct PortalResponse {
    /// None if the user chose none, or what is no file.
    std::optional<std::filesystem::path> folder;
};
/// None for arguments that are no response.
[[nodiscard]] std::optional<PortalResponse> portalResponse(GVariant* arguments);

/// Asks for a folder with the dialog of the desktop portal (org.freedesktop.portal.FileChooser), which is the
/// desktop's own whatever toolkit it is made with. Nothing is waited for. Main thread.
class PortalFolderChooser {
public:
    struct Question {
        /// The window that the dialog belongs to, in the portal's notation; may be empty.
        std::string parent;
        std::string title;
        std::string acceptLabel;
        std::filesystem::path directory;
    };
    using Answered = std::function<void(const std::optional<std::filesystem::path>&)>;
    using Unavailable = std::function<void()>;

    /// Ends in one call: of `answered` with the folder, or with none if the user chose none; or of
    /// `unavailable` if no portal that can choose folders answers within a second, or if it goes away with
    /// its dialog.
    PortalFolderChooser(Question question, Answered answered, Unavailable unavailable);
    PortalFolderChooser(const PortalFolderChooser&) = delete;
    PortalFolderChooser& operator=(const PortalFolderChooser&) = delete;
    /// Calls nothing any more.
    ~PortalFolderChooser();

private:
    void gotBus(GObjectPtr<GDBusConnection> bus);
    void gotVersion(GVariant* answer);
    void open();
    void responded(GVariant* parameters);
    void fail();
    void stopListening();

    Question question_;
    Answered answered_;
    Unavailable unavailable_;
    GObjectPtr<GCancellable> pending_;
    GObjectPtr<GDBusConnection> bus_;
    guint subscription_ = 0;
    guint watch_ = 0;
};

} // namespace harbrook::gtk
