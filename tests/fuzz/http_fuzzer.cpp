// Any bytes in the place of a server's answer: one outcome, which is a whole answer, or an error with what
// had arrived by then; and no body that is longer than what was sent.

#include "platform/gtk/foundation/HTTPExchange.h"
#include "tests/fuzz/FuzzInput.h"
#include "tests/fuzz/FuzzVariants.h"

#include <gio/gunixsocketaddress.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace {

using namespace harbrook;

/// Reads a request on each connection, says the bytes it was given, and hangs up.
class Server {
public:
    Server() {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path_ = std::filesystem::temp_directory_path() / ("hb-fuzz-" + std::to_string(getpid()));
        path_.native().copy(address.sun_path, sizeof address.sun_path - 1);
        unlink(path_.c_str());
        fuzz::require(bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0);
        fuzz::require(listen(listener_, SOMAXCONN) == 0);
        std::thread([this] { serve(); }).detach();
    }

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    void say(std::string_view bytes) {
        const std::lock_guard lock(mutex_);
        bytes_ = bytes;
    }

private:
    [[noreturn]] void serve() {
        for (;;) {
            const int connection = accept(listener_, nullptr, nullptr);
            std::string request;
            char part[4096];
            for (ssize_t count = 1; count > 0 && request.find("\r\n\r\n") == request.npos;) {
                count = read(connection, part, sizeof part);
                if (count > 0) request.append(part, static_cast<std::size_t>(count));
            }
            const auto bytes = [this] {
                const std::lock_guard lock(mutex_);
                return bytes_;
            }();
            static_cast<void>(send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL));
            close(connection);
        }
    }

    int listener_ = socket(AF_UNIX, SOCK_STREAM, 0);
    std::filesystem::path path_;
    std::mutex mutex_;
    std::string bytes_;
};

Server& server() {
    static auto& server = *std::make_unique<Server>().release();
    return server;
}

SoupSession* session() {
    static auto* session = [] {
        const auto address =
            gtk::GObjectPtr<GSocketAddress>::adopt(g_unix_socket_address_new(server().path().c_str()));
        auto* made = soup_session_new_with_options("remote-connectable", address.get(), nullptr);
        soup_session_remove_feature_by_type(made, SOUP_TYPE_CONTENT_DECODER);
        return made;
    }();
    return session;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    fuzz::failAtComplaints();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto bytes = fuzz::textOf(data, size);
    server().say(bytes);
    URLRequest request{*URL::URLWithString("http://localhost:1/")};
    int outcomes = 0;
    const auto deliver = [&](gtk::HTTPExchange::Outcome outcome) {
        ++outcomes;
        fuzz::require(outcome.error || (outcome.response && outcome.body));
        fuzz::require(outcome.response || !outcome.body);
        fuzz::require(!outcome.body || outcome.body->size() <= size);
    };
    const auto exchange = std::make_shared<gtk::HTTPExchange>(std::move(request), deliver);
    exchange->start(session());
    while (outcomes == 0)
        g_main_context_iteration(nullptr, TRUE);
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
    fuzz::require(outcomes == 1);
    return 0;
}
