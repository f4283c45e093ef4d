#include "tests/gtk/support/ScriptedServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <stdexcept>

namespace harbrook::tests {

namespace {

struct Address {
    sockaddr_storage storage{};
    socklen_t length = sizeof storage;

    [[nodiscard]] sockaddr* get() { return reinterpret_cast<sockaddr*>(&storage); }
};

Address makeAddress(const std::string& text, int port) {
    Address address;
    if (text.find(':') != std::string::npos) {
        auto& v6 = reinterpret_cast<sockaddr_in6&>(address.storage);
        v6.sin6_family = AF_INET6;
        v6.sin6_port = htons(static_cast<std::uint16_t>(port));
        inet_pton(AF_INET6, text.c_str(), &v6.sin6_addr);
        address.length = sizeof v6;
    } else {
        auto& v4 = reinterpret_cast<sockaddr_in&>(address.storage);
        v4.sin_family = AF_INET;
        v4.sin_port = htons(static_cast<std::uint16_t>(port));
        inet_pton(AF_INET, text.c_str(), &v4.sin_addr);
        address.length = sizeof v4;
    }
    return address;
}

gtk::FileDescriptor listenOn(Address& address) {
    const int family = address.storage.ss_family;
    gtk::FileDescriptor listener(socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const int yes = 1;
    setsockopt(listener.number(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    if (bind(listener.number(), address.get(), address.length) != 0 || listen(listener.number(), 64) != 0) {
        throw std::runtime_error("the test's server cannot listen");
    }
    getsockname(listener.number(), address.get(), &address.length);
    return listener;
}

/// Reads requests off one connection.
class Reader {
public:
    explicit Reader(int socket) : socket_(socket) {}

    [[nodiscard]] std::optional<ScriptedServer::Request> next() {
        std::size_t end = 0;
        while ((end = text_.find("\r\n\r\n")) == std::string::npos) {
            if (!readMore()) return std::nullopt;
        }
        auto request = parse(text_.substr(0, end + 2));
        text_.erase(0, end + 4);
        const auto length = request.headers.find("content-length");
        const std::size_t size = length == request.headers.end() ? 0 : std::stoul(length->second);
        while (text_.size() < size) {
            if (!readMore()) return std::nullopt;
        }
        request.body = text_.substr(0, size);
        text_.erase(0, size);
        return request;
    }

private:
    bool readMore() {
        std::array<char, 4096> buffer{};
        const auto count =
            gtk::retryWhenInterrupted([&] { return recv(socket_, buffer.data(), buffer.size(), 0); });
        if (count <= 0) return false;
        text_.append(buffer.data(), static_cast<std::size_t>(count));
        return true;
    }

    static ScriptedServer::Request parse(const std::string& head) {
        ScriptedServer::Request request;
        const auto firstSpace = head.find(' ');
        const auto secondSpace = head.find(' ', firstSpace + 1);
        request.method = head.substr(0, firstSpace);
        request.target = head.substr(firstSpace + 1, secondSpace - firstSpace - 1);
        std::size_t start = head.find("\r\n") + 2;
        while (start < head.size()) {
            const auto end = head.find("\r\n", start);
            const auto colon = head.find(':', start);
            std::string name = head.substr(start, colon - start);
            std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) {
                return static_cast<char>(std::tolower(c));
            });
            const auto value = head.find_first_not_of(' ', colon + 1);
            request.headers[name] = head.substr(value, end - value);
            start = end + 2;
        }
        return request;
    }

    int socket_;
    std::string text_;
};

} // namespace

ScriptedServer::ScriptedServer(Handler handler, const std::string& address, int port)
    : handler_(std::move(handler)) {
    Address where = makeAddress(address, port);
    listener_ = listenOn(where);
    port_ = where.storage.ss_family == AF_INET6
                ? ntohs(reinterpret_cast<sockaddr_in6&>(where.storage).sin6_port)
                : ntohs(reinterpret_cast<sockaddr_in&>(where.storage).sin_port);
    acceptor_ = std::thread([this] { acceptConnections(); });
}

ScriptedServer::~ScriptedServer() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
        stop_.notify_all();
    }
    shutdown(listener_.number(), SHUT_RDWR);
    acceptor_.join();
    closeConnections();
    for (Connection& connection : connections_)
        connection.thread.join();
}

std::string ScriptedServer::address(const std::string& path) const {
    return "http://localhost:" + std::to_string(port_) + path;
}

std::vector<ScriptedServer::Request> ScriptedServer::requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

void ScriptedServer::closeConnections() {
    const std::lock_guard lock(mutex_);
    for (Connection& connection : connections_)
        shutdown(connection.socket.number(), SHUT_RDWR);
}

std::string ScriptedServer::answer(int status, const std::string& body, const std::string& headers) {
    return "HTTP/1.1 " + std::to_string(status) +
           " Status\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" + headers + "\r\n" + body;
}

void ScriptedServer::acceptConnections() {
    for (;;) {
        gtk::FileDescriptor socket(accept4(listener_.number(), nullptr, nullptr, SOCK_CLOEXEC));
        if (!socket) return;
        const std::lock_guard lock(mutex_);
        if (stopping_) return;
        Connection& connection = connections_.emplace_back();
        connection.socket = std::move(socket);
        connection.number = static_cast<int>(connections_.size());
        connection.thread = std::thread([this, &connection] { serve(connection); });
    }
}

void ScriptedServer::serve(Connection& connection) {
    int socket = -1;
    int number = 0;
    {
        const std::lock_guard lock(mutex_);
        socket = connection.socket.number();
        number = connection.number;
    }
    Reader reader(socket);
    for (int count = 1;; ++count) {
        auto request = reader.next();
        if (!request) return;
        request->connection = number;
        request->number = count;
        {
            const std::lock_guard lock(mutex_);
            requests_.push_back(*request);
        }
        const Reply reply = handler_(*request);
        if (!waitFor(reply.delay)) return;
        send(socket, reply.bytes.data(), reply.bytes.size(), MSG_NOSIGNAL);
        if (reply.closesConnection) {
            shutdown(socket, SHUT_RDWR);
            return;
        }
    }
}

bool ScriptedServer::waitFor(double seconds) {
    std::unique_lock lock(mutex_);
    return !stop_.wait_for(lock, std::chrono::duration<double>(seconds), [this] { return stopping_; });
}

} // namespace harbrook::tests
