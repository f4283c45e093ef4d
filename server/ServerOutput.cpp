#include "server/ServerOutput.h"

#include "server/Text.h"

namespace harbrook {

void ServerOutput::handle(FileHandle& output) {
    const auto data = output.availableData();
    if (data.empty()) return;
    if (log_) log_->writeData(data);
    // A chunk that is not UTF-8 by itself, such as one cut inside a character, counts as empty text.
    const std::string_view text = isValidUTF8(data) ? std::string_view(data) : std::string_view();
    text_.append(text);
    if (announcedPort() != 0) return;
    if (const auto port = parser_.append(text)) {
        announcedPort_.store(*port, std::memory_order_release);
        ready_->signal();
    }
}

} // namespace harbrook
