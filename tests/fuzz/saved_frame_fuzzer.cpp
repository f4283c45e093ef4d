// Any file in the place of the one with the saved frames: a frame has a size that a screen can have, or is
// none.

#include "platform/gtk/window/FrameAutosave.h"
#include "tests/fuzz/FuzzInput.h"
#include "tests/fuzz/FuzzVariants.h"

#include <string>

namespace {

using namespace harbrook;

void check(const std::string& text) {
    const std::unique_ptr<GKeyFile, gtk::FreeWith<g_key_file_unref>> file(g_key_file_new());
    g_key_file_load_from_data(file.get(), text.data(), text.size(), G_KEY_FILE_KEEP_COMMENTS, nullptr);
    const auto frame = gtk::savedFrame(file.get(), "HarbrookMain");
    if (!frame) return;
    constexpr double largest = 32767;
    const auto& [width, height] = frame->size;
    fuzz::require(width > 0 && width <= largest && height > 0 && height <= largest);
    fuzz::require(text.find("width") != text.npos && text.find("height") != text.npos);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    fuzz::failAtComplaints();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(fuzz::textOf(data, size));
    check(text);
    check("[HarbrookMain]\nwidth=800\nheight=" + text);
    return 0;
}
