#include "app/AppDelegate.h"
#include "app/Invariant.h"
#include "window/JSString.h"
#include "window/PageMessage.h"

namespace harbrook {

void AppDelegate::didReceiveScriptMessage(const ScriptMessage& message) {
    assertMainThread();
    if (message.name != "fc") return;
    const auto parsed = pageMessage(message.body);
    if (!parsed) return;
    switch (parsed->kind) {
    case PageMessage::Kind::drag: {
        const auto event = platform_->sharedApplication().currentEvent();
        if (event && event->type() == EventType::leftMouseDown)
            required(window).performWindowDragWithEvent(*event);
        break;
    }
    case PageMessage::Kind::zoom:
        required(window).zoom();
        break;
    case PageMessage::Kind::quit:
        platform_->sharedApplication().terminate();
        break;
    case PageMessage::Kind::title:
        required(window).setTitle(parsed->argument.empty() ? "Harbrook" : parsed->argument);
        // A new title can make the platform lay its title bar out again.
        placeTrafficLights();
        break;
    case PageMessage::Kind::pickFolder:
        pickFolder(parsed->argument);
        break;
    case PageMessage::Kind::state:
        refreshStatus();
        break;
    }
}

void AppDelegate::pickFolder(const std::string& target) {
    assertMainThread();
    const auto panel = platform_->makeOpenPanel();
    panel->setCanChooseDirectories(true);
    panel->setCanChooseFiles(false);
    panel->setAllowsMultipleSelection(false);
    panel->setCanCreateDirectories(true);
    panel->setPrompt("Choose");
    panel->setMessage(target.empty() ? "Choose a folder that contains your projects." : "Choose a folder.");
    panel->setDirectoryURL(platform_->fileManager().homeDirectoryForCurrentUser());
    panel->beginSheetModalForWindow(window, [panel, target, weak = weak_from_this()](ModalResponse response) {
        const auto self = weak.lock();
        const auto chosen = panel->chosenURL();
        if (response != NSModalResponseOK || !chosen || !self) return;
        required(self->webView)
            .evaluateJavaScript(
                "window.onFolderPicked && window.onFolderPicked(" + jsString(chosen->native()) + ", " +
                jsString(target) + ")");
    });
}

} // namespace harbrook
