#pragma once

#include "tests/macos/running/foundation/Foundation.h"

#include <functional>
#include <optional>

namespace harbrook::running {

/// A request on its way, in the hands of the test.
struct Exchange {
    std::string address;
    std::string method;
    std::string body;
    Kept<id> handler;
    bool isOpen = true;

    void answer(int status, const std::string& content);
    /// The head of an HTTP answer and the beginning of its body; the rest fails, or never comes.
    void answerInPart(int status, const std::string& content) {
        arrivedStatus = status;
        if (!content.empty()) arrivedContent = content;
    }
    std::optional<int> arrivedStatus = {};
    std::optional<std::string> arrivedContent = {};
    /// An answer of another protocol than HTTP.
    void answerWithoutStatus(const std::string& content);
    /// The connection breaks; `content` had come by then.
    void fail(const std::string& description, const std::optional<std::string>& content = {});

private:
    void complete(NSData* content, NSURLResponse* response, NSError* error);
};

/// Method and address.
[[nodiscard]] std::string describeRequest(NSURLRequest* request);
/// The exchanges to which nothing has come back yet, oldest first.
[[nodiscard]] std::vector<std::shared_ptr<Exchange>> openExchanges();
void forgetExchanges();

} // namespace harbrook::running
