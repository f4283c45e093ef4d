// Any address, any port: only the local server's own address stays in the view of what a browser would show,
// and an address means the same when it is taken apart again.

#include "tests/fuzz/FuzzInput.h"
#include "window/NavigationPolicy.h"

#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace harbrook;
    if (size < 2) return 0;
    const std::int64_t port = data[0] * 256 + data[1];
    const auto text = fuzz::textOf(data + 2, size - 2);
    const auto url = URL::URLWithString(text);
    const auto decision = decidePolicy(url, port);
    if (!url) {
        fuzz::require(decision == NavigationDecision::allow);
        return 0;
    }

    const auto again = URL::URLWithString(url->absoluteString());
    fuzz::require(again && *again == *url);
    fuzz::require(
        again->scheme() == url->scheme() && again->host() == url->host() && again->port() == url->port());
    fuzz::require(decidePolicy(again, port) == decision);

    // Read without a parser: what stays has that name, and that number behind the name.
    if (decision == NavigationDecision::allow && hasExternalScheme(*url)) {
        const auto& address = url->absoluteString();
        const auto authority = address.substr(0, address.find_first_of("/?#", address.find("//") + 2));
        const auto colon = authority.rfind(':');
        fuzz::require(authority.find("localhost") != std::string::npos && colon != std::string::npos);
        fuzz::require(std::stoll(authority.substr(colon + 1)) == port);
    }
    const auto appended = url->URLByAppendingPathComponent(text);
    fuzz::require(appended.host() == url->host() && appended.port() == url->port());
    return 0;
}
