#pragma once

#include "platform/Panels.h"
#include "platform/recording/World.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace harbrook::recording {

/// A sheet that waits for the user. The desktop keeps it until it is answered.
class Sheet {
public:
    virtual ~Sheet() = default;
    /// The user ends the sheet. What a folder panel has chosen goes first (`OpenPanel::setChoice`).
    void simulateEnd(ModalResponse response);
    /// Lets go of whoever waits for the answer.
    void forgetCompletion() { completion_ = {}; }

protected:
    friend struct Sheets;
    SheetCompletion completion_;
};

/// The sheets that are open, oldest first.
struct Sheets {
    std::vector<std::shared_ptr<Sheet>> open;

    void begin(const std::shared_ptr<Sheet>& sheet, SheetCompletion completion);
    /// Ends the oldest sheet.
    void simulateEnd(ModalResponse response);
};

class Alert final : public harbrook::Alert, public Sheet, public std::enable_shared_from_this<Alert> {
public:
    Alert(WorldPtr world, Sheets& sheets) : world_(std::move(world)), sheets_(sheets) {}

    void setMessageText(const std::string& text) override;
    void addButtonWithTitle(const std::string& title) override;
    void beginSheetModalForWindow(
        const std::shared_ptr<harbrook::Window>& window, SheetCompletion completionHandler) override;

private:
    WorldPtr world_;
    Sheets& sheets_;
};

class OpenPanel final : public harbrook::OpenPanel,
                        public Sheet,
                        public std::enable_shared_from_this<OpenPanel> {
public:
    OpenPanel(WorldPtr world, Sheets& sheets) : world_(std::move(world)), sheets_(sheets) {}

    void setCanChooseDirectories(bool flag) override;
    void setCanChooseFiles(bool flag) override;
    void setAllowsMultipleSelection(bool flag) override;
    void setCanCreateDirectories(bool flag) override;
    void setPrompt(const std::string& prompt) override;
    void setMessage(const std::string& message) override;
    void setDirectoryURL(const std::filesystem::path& directory) override;
    void beginSheetModalForWindow(
        const std::shared_ptr<harbrook::Window>& window, SheetCompletion completionHandler) override;
    std::optional<std::filesystem::path> chosenURL() override { return choice_; }

    void setChoice(std::filesystem::path choice) { choice_ = std::move(choice); }

private:
    WorldPtr world_;
    Sheets& sheets_;
    std::optional<std::filesystem::path> choice_;
};

} // namespace harbrook::recording
