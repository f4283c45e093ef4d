#include "platform/gtk/window/FrameAutosave.h"

#include "platform/gtk/foundation/GObjectPtr.h"

#include <utility>

namespace harbrook::gtk {

namespace {

using KeyFile = std::unique_ptr<GKeyFile, FreeWith<g_key_file_unref>>;

constexpr auto keyX = "x";
constexpr auto keyY = "y";
constexpr auto keyWidth = "width";
constexpr auto keyHeight = "height";
constexpr auto keyMaximized = "maximized";
constexpr int largestSize = 32767;

std::string directory() {
    return std::string(g_get_user_state_dir()) + "/harbrook";
}

std::string path() {
    return directory() + "/frames.ini";
}

KeyFile read() {
    KeyFile file(g_key_file_new());
    g_key_file_load_from_file(file.get(), path().c_str(), G_KEY_FILE_KEEP_COMMENTS, nullptr);
    return file;
}

std::optional<int> integer(GKeyFile* file, const std::string& group, const char* key) {
    GError* failure = nullptr;
    const int value = g_key_file_get_integer(file, group.c_str(), key, &failure);
    const GErrorPtr error(failure);
    if (error) return std::nullopt;
    return value;
}

} // namespace

std::optional<SavedFrame> savedFrame(GKeyFile* file, const std::string& group) {
    const auto width = integer(file, group, keyWidth);
    const auto height = integer(file, group, keyHeight);
    const auto isSize = [](const std::optional<int>& length) {
        return length && *length > 0 && *length <= largestSize;
    };
    if (!isSize(width) || !isSize(height)) return std::nullopt;
    SavedFrame frame;
    frame.size = {static_cast<double>(*width), static_cast<double>(*height)};
    const auto x = integer(file, group, keyX);
    const auto y = integer(file, group, keyY);
    if (x && y) frame.topLeft = Point{static_cast<double>(*x), static_cast<double>(*y)};
    frame.isMaximized = g_key_file_get_boolean(file, group.c_str(), keyMaximized, nullptr);
    return frame;
}

FrameAutosave::FrameAutosave(std::string name) : name_(std::move(name)) {}

std::optional<SavedFrame> FrameAutosave::load() const {
    return savedFrame(read().get(), name_);
}

void FrameAutosave::save(const SavedFrame& frame) {
    if (saved_ == frame) return;
    const KeyFile file = read();
    const auto set = [&](const char* key, double value) {
        g_key_file_set_integer(file.get(), name_.c_str(), key, static_cast<int>(value));
    };
    g_key_file_remove_group(file.get(), name_.c_str(), nullptr);
    if (frame.topLeft) {
        set(keyX, frame.topLeft->x);
        set(keyY, frame.topLeft->y);
    }
    set(keyWidth, frame.size.width);
    set(keyHeight, frame.size.height);
    g_key_file_set_boolean(file.get(), name_.c_str(), keyMaximized, frame.isMaximized);
    constexpr int onlyForTheUser = 0700;
    g_mkdir_with_parents(directory().c_str(), onlyForTheUser);
    if (g_key_file_save_to_file(file.get(), path().c_str(), nullptr)) saved_ = frame;
}

} // namespace harbrook::gtk
