#pragma once

#include "platform/gtk/foundation/FileDescriptor.h"

#include <condition_variable>
#include <functional>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace harbrook::tests {

/// A web server of this process on a port that the system chose. It says whatever bytes the test wants said.
class ScriptedServer {
public:
    struct Request {
        std::string method;
        std::string target;
        /// Names in lower case.
        std::map<std::string, std::string> headers;
        std::string body;
        /// 1 for the first connection that was made.
        int connection = 0;
        /// 1 for the first request on its connection.
        int number = 0;
    };
    struct Reply {
        std::string bytes;
        double delay = 0;
        bool closesConnection = false;
    };
    /// Called on a thread of the server's.
    using Handler = std::function<Reply(const Request&)>;

    /// `address` is "127.0.0.1" or "::1"; port 0 lets the system choose.
    explicit ScriptedServer(Handler handler, const std::string& address = "127.0.0.1", int port = 0);
    ~ScriptedServer();
    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    [[nodiscard]] int port() const { return port_; }
    /// "http://localhost:PORT" and `path`.
    [[nodiscard]] std::string address(const std::string& path) const;
    [[nodiscard]] std::vector<Request> requests() const;
    /// Closes the connections there are, as a server does with those that are idle.
    void closeConnections();

    /// A whole answer with its length.
    [[nodiscard]] static std::string answer(
        int status, const std::string& body, const std::string& headers = {});

private:
    struct Connection {
        gtk::FileDescriptor socket;
        std::thread thread;
        int number = 0;
    };

    void acceptConnections();
    void serve(Connection& connection);
    [[nodiscard]] bool waitFor(double seconds);

    Handler handler_;
    gtk::FileDescriptor listener_;
    int port_ = 0;
    mutable std::mutex mutex_;
    std::condition_variable stop_;
    bool stopping_ = false;
    std::list<Connection> connections_;
    std::vector<Request> requests_;
    std::thread acceptor_;
};

} // namespace harbrook::tests
