#include "platform/gtk/GtkPlatform.h"

#include "platform/gtk/app/CommandLine.h"
#include "platform/gtk/foundation/FileHandle.h"
#include "platform/gtk/foundation/ProcessSetup.h"
#include "platform/gtk/foundation/Semaphore.h"
#include "platform/gtk/foundation/Task.h"
#include "platform/gtk/foundation/Timer.h"
#include "platform/gtk/status/Images.h"
#include "platform/gtk/web/EngineLeftovers.h"
#include "platform/gtk/web/WebView.h"
#include "platform/gtk/window/Alert.h"
#include "platform/gtk/window/Constraints.h"
#include "platform/gtk/window/OpenPanel.h"
#include "platform/gtk/window/TextField.h"
#include "platform/gtk/window/Window.h"

#include <unistd.h>

#include <cstdlib>

namespace harbrook::gtk {

GtkPlatform::GtkPlatform(Start start)
    : start_(start), statusBar_([this](const MenuItem& item, const std::string& activationToken) {
          application().sendAction(item, activationToken);
      }) {}

std::shared_ptr<DispatchSemaphore> GtkPlatform::makeSemaphore(int count) {
    return std::make_shared<Semaphore>(count);
}

std::shared_ptr<harbrook::Task> GtkPlatform::makeTask() {
    return std::make_shared<Task>(processInfo_.environment());
}

std::shared_ptr<harbrook::Pipe> GtkPlatform::makePipe() {
    return std::make_shared<Pipe>();
}

std::shared_ptr<harbrook::FileHandle> GtkPlatform::fileHandleForWritingToURL(
    const std::filesystem::path& path) {
    return openForWriting(path);
}

std::shared_ptr<harbrook::FileHandle> GtkPlatform::fileHandleWithNullDevice() {
    return openNullDevice();
}

std::uint8_t GtkPlatform::secureRandomByte() {
    std::uint8_t byte = 0;
    if (getentropy(&byte, sizeof byte) != 0) std::abort();
    return byte;
}

std::shared_ptr<harbrook::Timer> GtkPlatform::scheduledTimerWithTimeInterval(
    double seconds, bool repeats, Block block) {
    return std::make_shared<Timer>(seconds, repeats, std::move(block));
}

std::shared_ptr<harbrook::WebView> GtkPlatform::makeWebView(
    Rect frame, const WebViewConfiguration& configuration) {
    globalQueue_.async([] { removeEngineLeftovers(g_get_user_runtime_dir()); });
    return gtk::makeWebView(
        notificationCenter_, frame, configuration, [this] { application().firstPageDidAppear(); });
}

std::shared_ptr<harbrook::Window> GtkPlatform::makeWindow(
    Rect contentRect, std::uint32_t styleMask, BackingStore /*backing*/, bool /*defer*/) {
    return gtk::makeWindow(application(), notificationCenter_, contentRect, styleMask);
}

std::shared_ptr<harbrook::TextField> GtkPlatform::labelWithString(const std::string& text) {
    return makeLabel(notificationCenter_, text);
}

void GtkPlatform::activateConstraints(const std::vector<LayoutConstraint>& constraints) {
    gtk::activateConstraints(constraints);
}

std::shared_ptr<harbrook::Alert> GtkPlatform::makeAlert() {
    return gtk::makeAlert();
}

std::shared_ptr<harbrook::OpenPanel> GtkPlatform::makeOpenPanel() {
    return gtk::makeOpenPanel();
}

std::optional<Image> GtkPlatform::imageWithContentsOfURL(const std::filesystem::path& path) {
    return gtk::imageWithContentsOfURL(path);
}

} // namespace harbrook::gtk

namespace harbrook {

std::shared_ptr<Platform> makePlatform(int argc, char** argv) {
    const auto start = gtk::answerCommandLine(argc, argv);
    gtk::setUpProcess();
    // Workers may still be at their blocks while the process ends, and use the services: they are never
    // destroyed.
    static gtk::GtkPlatform& platform = *std::make_unique<gtk::GtkPlatform>(start).release();
    return {std::shared_ptr<void>(), &platform};
}

} // namespace harbrook
