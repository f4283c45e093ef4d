#pragma once

#include "tests/contract/Desktop.h"

#include <condition_variable>
#include <list>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace harbrook::contract {

/// A web server of this process on a port that the system chose. It answers one request a connection.
class LoopbackServer {
public:
    LoopbackServer();
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    /// Where `answer` is to be had from now on.
    [[nodiscard]] std::string addressOf(const Answer& answer);

private:
    void acceptConnections();
    void serve(int connection);
    [[nodiscard]] Answer answerTo(const std::string& request);
    [[nodiscard]] bool waitFor(double seconds);

    int listener_ = -1;
    int port_ = 0;
    std::mutex mutex_;
    std::condition_variable stop_;
    bool stopping_ = false;
    std::vector<Answer> answers_;
    std::list<std::thread> connections_;
    std::thread acceptor_;
};

} // namespace harbrook::contract
