// Any address, any port: only the local server's own address stays in the view of what a browser would show,
// and an address is taken apart as the engine's own parser takes it apart.

#include "tests/fuzz/FuzzInput.h"
#include "window/NavigationPolicy.h"

#include <webkit/webkit.h>

#include <memory>
#include <string>

namespace {

using namespace harbrook;

template <auto release>
struct Releaser {
    void operator()(auto* object) const { release(object); }
};
using Request = std::unique_ptr<WebKitURIRequest, Releaser<g_object_unref>>;
using Origin = std::unique_ptr<WebKitSecurityOrigin, Releaser<webkit_security_origin_unref>>;

/// `text` as the engine would report it.
std::string inTheEnginesSpelling(const std::string& text) {
    const Request request(webkit_uri_request_new(text.c_str()));
    const char* address = webkit_uri_request_get_uri(request.get());
    return address ? address : "";
}

/// The origin of an address, where its parts are those of the address itself.
Origin originOf(const std::string& address) {
    Origin origin(webkit_security_origin_new_for_uri(address.c_str()));
    const char* scheme = webkit_security_origin_get_protocol(origin.get());
    return scheme && address.starts_with(std::string(scheme) + "://") ? std::move(origin) : nullptr;
}

std::string hostOf(const Origin& origin) {
    const char* host = webkit_security_origin_get_host(origin.get());
    std::string text = host ? host : "";
    return text.starts_with('[') ? text.substr(1, text.size() - 2) : text;
}

bool isOwn(const URL& url, std::int64_t port) {
    return decidePolicy(url, port) == NavigationDecision::allow && hasExternalScheme(url);
}

void compareWithEngine(const std::string& text, std::int64_t port) {
    const auto address = inTheEnginesSpelling(text);
    const auto url = URL::reported(address);
    if (!url) return;
    const auto origin = originOf(address);
    // What the engine finds no host in is not the server's.
    if (!origin) return fuzz::require(!isOwn(*url, port));
    fuzz::require(url->scheme() == webkit_security_origin_get_protocol(origin.get()));
    // The host of an origin is in lower case; in an address, that of a web address only.
    const auto host = url->host().value_or("");
    const bool isWebAddress = url->scheme() == "http" || url->scheme() == "https";
    fuzz::require(
        isWebAddress ? host == hostOf(origin)
                     : g_ascii_strcasecmp(host.c_str(), hostOf(origin).c_str()) == 0);
    fuzz::require(url->port().value_or(0) == webkit_security_origin_get_port(origin.get()));

    // Should the engine ever report an address as somebody wrote it, none passes for the server's.
    const auto asWritten = URL::reported(text);
    if (asWritten && isOwn(*asWritten, port)) fuzz::require(isOwn(*url, port));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const std::int64_t port = data[0] * 256 + data[1];
    const std::string text(fuzz::textOf(data + 2, size - 2));
    const auto url = URL::reported(text);
    const auto decision = decidePolicy(url, port);
    if (!url) {
        fuzz::require(decision == NavigationDecision::allow);
        return 0;
    }
    fuzz::require(url->absoluteString() == text);

    // Read without a parser: what stays has that name, and that number behind the name.
    if (isOwn(*url, port)) {
        const auto authority = text.substr(0, text.find_first_of("/?#\\", text.find("//") + 2));
        const auto colon = authority.rfind(':');
        fuzz::require(authority.find("localhost") != std::string::npos && colon != std::string::npos);
        fuzz::require(std::stoll(authority.substr(colon + 1)) == port);
    }
    const auto appended = url->URLByAppendingPathComponent(text);
    fuzz::require(appended.host() == url->host() && appended.port() == url->port());

    // The engine is asked only about what it could have been given: text.
    if (g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr))
        compareWithEngine(text, port);
    return 0;
}
