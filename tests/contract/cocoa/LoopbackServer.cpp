#include "tests/contract/cocoa/LoopbackServer.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <stdexcept>

namespace harbrook::contract {

namespace {

/// How soon the threads notice that the test has ended, in milliseconds.
constexpr int notice = 20;

/// Whether there is something to read before the patience ends.
bool isReadable(int descriptor) {
    pollfd readable{descriptor, POLLIN, 0};
    return poll(&readable, 1, notice) > 0;
}

} // namespace

LoopbackServer::LoopbackServer() : listener_(socket(AF_INET, SOCK_STREAM, 0)) {
    fcntl(listener_, F_SETFD, FD_CLOEXEC);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const where = reinterpret_cast<sockaddr*>(&address);
    if (bind(listener_, where, length) != 0 || listen(listener_, 64) != 0 ||
        getsockname(listener_, where, &length) != 0) {
        throw std::runtime_error("the test's server cannot listen");
    }
    port_ = ntohs(address.sin_port);
    acceptor_ = std::thread([this] { acceptConnections(); });
}

LoopbackServer::~LoopbackServer() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
        stop_.notify_all();
    }
    acceptor_.join();
    for (std::thread& connection : connections_)
        connection.join();
    close(listener_);
}

std::string LoopbackServer::addressOf(const Answer& answer) {
    const std::lock_guard lock(mutex_);
    answers_.push_back(answer);
    return "http://localhost:" + std::to_string(port_) + "/" + std::to_string(answers_.size() - 1);
}

void LoopbackServer::acceptConnections() {
    while (waitFor(0)) {
        if (!isReadable(listener_)) continue;
        const int connection = accept(listener_, nullptr, nullptr);
        if (connection < 0) continue;
        fcntl(connection, F_SETFD, FD_CLOEXEC);
        connections_.emplace_back([this, connection] {
            serve(connection);
            close(connection);
        });
    }
}

void LoopbackServer::serve(int connection) {
    std::string request;
    while (request.find("\r\n\r\n") == std::string::npos) {
        if (!waitFor(0)) return;
        if (!isReadable(connection)) continue;
        std::array<char, 4096> buffer{};
        const auto count = recv(connection, buffer.data(), buffer.size(), 0);
        if (count <= 0) return;
        request.append(buffer.data(), static_cast<std::size_t>(count));
    }
    const Answer answer = answerTo(request);
    if (!waitFor(answer.delay)) return;
    const auto bytes = "HTTP/1.1 " + std::to_string(answer.status) +
                       " Status\r\nContent-Length: " + std::to_string(answer.body.size()) +
                       "\r\nConnection: close\r\n\r\n" + answer.body;
    // Whoever asked may have given up by now.
#ifdef SO_NOSIGPIPE
    const int yes = 1;
    setsockopt(connection, SOL_SOCKET, SO_NOSIGPIPE, &yes, sizeof yes);
    send(connection, bytes.data(), bytes.size(), 0);
#else
    send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
#endif
}

Answer LoopbackServer::answerTo(const std::string& request) {
    const std::lock_guard lock(mutex_);
    return answers_.at(std::stoul(request.substr(request.find('/') + 1)));
}

bool LoopbackServer::waitFor(double seconds) {
    std::unique_lock lock(mutex_);
    return !stop_.wait_for(lock, std::chrono::duration<double>(seconds), [this] { return stopping_; });
}

} // namespace harbrook::contract
