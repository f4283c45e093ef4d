#include "platform/cocoa/Panels.h"

#include "platform/cocoa/Conversions.h"
#include "platform/cocoa/Window.h"

// A sheet on the screen is kept by its window, so these objects may go before it ends.

namespace harbrook::cocoa {

void Alert::setMessageText(const std::string& text) {
    alert_.messageText = toNSString(text);
}

void Alert::addButtonWithTitle(const std::string& title) {
    [alert_ addButtonWithTitle:toNSString(title)];
}

void Alert::beginSheetModalForWindow(
    const std::shared_ptr<harbrook::Window>& window, SheetCompletion completionHandler) {
    [alert_ beginSheetModalForWindow:Window::nativeOf(*window)
                   completionHandler:^(NSModalResponse response) {
                       completionHandler(response);
                   }];
}

void OpenPanel::setCanChooseDirectories(bool flag) {
    panel_.canChooseDirectories = flag;
}

void OpenPanel::setCanChooseFiles(bool flag) {
    panel_.canChooseFiles = flag;
}

void OpenPanel::setAllowsMultipleSelection(bool flag) {
    panel_.allowsMultipleSelection = flag;
}

void OpenPanel::setCanCreateDirectories(bool flag) {
    panel_.canCreateDirectories = flag;
}

void OpenPanel::setPrompt(const std::string& prompt) {
    panel_.prompt = toNSString(prompt);
}

void OpenPanel::setMessage(const std::string& message) {
    panel_.message = toNSString(message);
}

void OpenPanel::setDirectoryURL(const std::filesystem::path& directory) {
    panel_.directoryURL = fileURL(directory);
}

void OpenPanel::beginSheetModalForWindow(
    const std::shared_ptr<harbrook::Window>& window, SheetCompletion completionHandler) {
    [panel_ beginSheetModalForWindow:Window::nativeOf(*window)
                   completionHandler:^(NSModalResponse response) {
                       completionHandler(response);
                   }];
}

std::optional<std::filesystem::path> OpenPanel::chosenURL() {
    return pathOf(panel_.URL);
}

} // namespace harbrook::cocoa
