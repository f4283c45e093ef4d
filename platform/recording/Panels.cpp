#include "platform/recording/Panels.h"

#include "platform/recording/Format.h"

namespace harbrook::recording {

void Sheet::simulateEnd(ModalResponse response) {
    refuseIf(!completion_, "the sheet has ended already, or was never shown");
    std::exchange(completion_, {})(response);
}

void Sheets::begin(const std::shared_ptr<Sheet>& sheet, SheetCompletion completion) {
    refuseIf(static_cast<bool>(sheet->completion_), "the sheet is being shown already");
    sheet->completion_ = std::move(completion);
    open.push_back(sheet);
}

void Sheets::simulateEnd(ModalResponse response) {
    refuseIf(open.empty(), "no sheet is open");
    const auto sheet = open.front();
    open.erase(open.begin());
    sheet->simulateEnd(response);
}

void Alert::setMessageText(const std::string& text) {
    world_->noteOnMain("alert setMessageText: " + inQuotes(text));
}

void Alert::addButtonWithTitle(const std::string& title) {
    world_->noteOnMain("alert addButtonWithTitle: " + inQuotes(title));
}

void Alert::beginSheetModalForWindow(
    const std::shared_ptr<harbrook::Window>& window, SheetCompletion completionHandler) {
    world_->noteOnMain("alert beginSheetModalForWindow");
    refuseIf(!window, "a sheet needs a window");
    sheets_.begin(shared_from_this(), std::move(completionHandler));
}

void OpenPanel::setCanChooseDirectories(bool flag) {
    world_->noteOnMain("openPanel setCanChooseDirectories: " + format(flag));
}

void OpenPanel::setCanChooseFiles(bool flag) {
    world_->noteOnMain("openPanel setCanChooseFiles: " + format(flag));
}

void OpenPanel::setAllowsMultipleSelection(bool flag) {
    world_->noteOnMain("openPanel setAllowsMultipleSelection: " + format(flag));
}

void OpenPanel::setCanCreateDirectories(bool flag) {
    world_->noteOnMain("openPanel setCanCreateDirectories: " + format(flag));
}

void OpenPanel::setPrompt(const std::string& prompt) {
    world_->noteOnMain("openPanel setPrompt: " + inQuotes(prompt));
}

void OpenPanel::setMessage(const std::string& message) {
    world_->noteOnMain("openPanel setMessage: " + inQuotes(message));
}

void OpenPanel::setDirectoryURL(const std::filesystem::path& directory) {
    world_->noteOnMain("openPanel setDirectoryURL: " + directory.string());
}

void OpenPanel::beginSheetModalForWindow(
    const std::shared_ptr<harbrook::Window>& window, SheetCompletion completionHandler) {
    world_->noteOnMain("openPanel beginSheetModalForWindow");
    refuseIf(!window, "a sheet needs a window");
    sheets_.begin(shared_from_this(), std::move(completionHandler));
}

} // namespace harbrook::recording
