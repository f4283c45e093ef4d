#include "platform/recording/Platform.h"

#include "platform/recording/Format.h"

namespace harbrook::recording {

namespace {

const char* attributeName(LayoutAttribute attribute) {
    switch (attribute) {
    case LayoutAttribute::centerX:
        return "centerX";
    case LayoutAttribute::centerY:
        return "centerY";
    case LayoutAttribute::width:
        return "width";
    }
    return "unknown";
}

std::string nameOf(const std::shared_ptr<harbrook::View>& view) {
    const auto own = std::dynamic_pointer_cast<View>(view);
    refuseIf(!own, "a constraint for a view of another platform");
    return own->name();
}

std::string constraintText(const LayoutConstraint& constraint) {
    const std::string attribute = attributeName(constraint.attribute);
    auto text = nameOf(constraint.item) + "." + attribute +
                (constraint.relation == LayoutRelation::equal ? " = " : " <= ");
    if (!constraint.toItem) return text + format(constraint.constant);
    text += nameOf(constraint.toItem) + "." + attribute;
    return constraint.constant == 0 ? text : text + " + " + format(constraint.constant);
}

} // namespace

Platform::Platform()
    : world_(std::make_shared<World>()),
      mainQueue_(world_),
      globalQueue_(world_),
      files_(std::make_shared<FileManager>(world_)),
      bundle_(world_, files_),
      session_(world_),
      application_(world_),
      workspace_(world_),
      statusBar_(world_),
      notificationCenter_(world_),
      distributedNotificationCenter_(world_) {
    files_->addDirectory(files_->homeDirectoryForCurrentUser());
    files_->addDirectory(Bundle::root);
}

Platform::~Platform() {
    shutDown();
}

void Platform::shutDown() {
    for (const auto& child : processes_.children)
        child->forgetStreams();
    for (const auto& exchange : session_.exchanges())
        exchange->forgetHandler();
    for (const auto& sheet : std::exchange(sheets_.open, {}))
        sheet->forgetCompletion();
    world_->scheduler.shutDown();
    for (const auto& untie : std::exchange(world_->atEnd, {}))
        untie();
}

std::shared_ptr<DispatchSemaphore> Platform::makeSemaphore(int count) {
    return std::make_shared<Semaphore>(world_, count);
}

std::shared_ptr<harbrook::Task> Platform::makeTask() {
    return std::make_shared<Task>(world_, processes_);
}

std::shared_ptr<harbrook::Pipe> Platform::makePipe() {
    return std::make_shared<Pipe>(world_, "pipe " + std::to_string(++pipeCount_));
}

std::shared_ptr<FileHandle> Platform::fileHandleForWritingToURL(const std::filesystem::path& path) {
    return files_->openForWriting(path);
}

std::shared_ptr<FileHandle> Platform::fileHandleWithNullDevice() {
    return std::make_shared<NullDevice>();
}

std::uint8_t Platform::secureRandomByte() {
    ++randomBytesDrawn_;
    if (randomBytes_.empty()) return static_cast<std::uint8_t>(random_() & 255);
    const auto byte = randomBytes_.front();
    randomBytes_.pop_front();
    return byte;
}

Application& Platform::sharedApplication() {
    world_->requireMain("sharedApplication");
    application_.make();
    return application_;
}

Workspace& Platform::sharedWorkspace() {
    world_->requireMain("sharedWorkspace");
    return workspace_;
}

StatusBar& Platform::systemStatusBar() {
    world_->requireMain("systemStatusBar");
    return statusBar_;
}

NotificationCenter& Platform::notificationCenter() {
    world_->requireMain("notificationCenter");
    return notificationCenter_;
}

DistributedNotificationCenter& Platform::distributedNotificationCenter() {
    world_->requireMain("distributedNotificationCenter");
    return distributedNotificationCenter_;
}

std::shared_ptr<harbrook::Timer> Platform::scheduledTimerWithTimeInterval(
    double seconds, bool repeats, Block block) {
    world_->noteOnMain("timer schedule: " + format(seconds) + (repeats ? " repeats" : " once"));
    const auto timer = std::make_shared<Timer>(world_, seconds, repeats, std::move(block));
    timer->start();
    timer_ = timer;
    return timer;
}

std::shared_ptr<harbrook::WebView> Platform::makeWebView(
    Rect frame, const WebViewConfiguration& configuration) {
    world_->noteOnMain("webView init: " + format(frame));
    const auto view = std::make_shared<WebView>(world_, notificationCenter_, configuration);
    view->layOut(frame);
    webView_ = view;
    return view;
}

std::shared_ptr<harbrook::Window> Platform::makeWindow(
    Rect contentRect, std::uint32_t styleMask, BackingStore backing, bool defer) {
    world_->noteOnMain(
        "window init: " + format(contentRect) + " style " + std::to_string(styleMask) + " backing " +
        std::to_string(static_cast<int>(backing)) + " defer " + format(defer));
    const auto window =
        std::make_shared<Window>(world_, notificationCenter_, contentRect, styleMask, titlebarLayout_);
    if (savedFrame_) window->setSavedFrame(*savedFrame_);
    window_ = window;
    return window;
}

std::shared_ptr<harbrook::TextField> Platform::labelWithString(const std::string& text) {
    world_->noteOnMain("label init: " + inQuotes(text));
    const auto label = std::make_shared<TextField>(world_, notificationCenter_, text);
    label_ = label;
    return label;
}

void Platform::activateConstraints(const std::vector<LayoutConstraint>& constraints) {
    std::string line = "layout activateConstraints:";
    for (const auto& constraint : constraints) {
        line += (&constraint == &constraints.front() ? " " : ", ") + constraintText(constraint);
    }
    world_->noteOnMain(line);
}

std::shared_ptr<harbrook::Alert> Platform::makeAlert() {
    world_->noteOnMain("alert init");
    return std::make_shared<Alert>(world_, sheets_);
}

std::shared_ptr<harbrook::OpenPanel> Platform::makeOpenPanel() {
    world_->noteOnMain("openPanel init");
    return std::make_shared<OpenPanel>(world_, sheets_);
}

std::optional<Image> Platform::imageWithContentsOfURL(const std::filesystem::path& path) {
    world_->requireMain("imageWithContentsOfURL");
    const auto found = pictures_.find(path);
    if (found == pictures_.end()) return std::nullopt;
    return Image{found->second, false, path, {}};
}

void Platform::addPicture(const std::filesystem::path& path, Size size) {
    files_->addFile(path);
    pictures_[path] = size;
}

} // namespace harbrook::recording
