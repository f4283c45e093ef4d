#pragma once

#include "platform/Panels.h"
#include "platform/cocoa/Frameworks.h"

namespace harbrook::cocoa {

class Alert final : public harbrook::Alert {
public:
    void setMessageText(const std::string& text) override;
    void addButtonWithTitle(const std::string& title) override;
    void beginSheetModalForWindow(
        const std::shared_ptr<Window>& window, SheetCompletion completionHandler) override;

private:
    NSAlert* alert_ = [[NSAlert alloc] init];
};

class OpenPanel final : public harbrook::OpenPanel {
public:
    void setCanChooseDirectories(bool flag) override;
    void setCanChooseFiles(bool flag) override;
    void setAllowsMultipleSelection(bool flag) override;
    void setCanCreateDirectories(bool flag) override;
    void setPrompt(const std::string& prompt) override;
    void setMessage(const std::string& message) override;
    void setDirectoryURL(const std::filesystem::path& directory) override;
    void beginSheetModalForWindow(
        const std::shared_ptr<Window>& window, SheetCompletion completionHandler) override;
    std::optional<std::filesystem::path> chosenURL() override;

private:
    NSOpenPanel* panel_ = [NSOpenPanel openPanel];
};

} // namespace harbrook::cocoa
