#include "platform/URL.h"

#include <algorithm>
#include <charconv>

namespace harbrook {

namespace {

constexpr std::string_view unreservedMarks = "-._~";
constexpr std::string_view subDelimiters = "!$&'()*+,;=";
constexpr std::string_view hexDigits = "0123456789ABCDEF";

bool isAsciiAlphanumeric(unsigned char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool contains(std::string_view set, char c) {
    return set.find(c) != std::string_view::npos;
}

/// Characters that may stand in a path as they are (RFC 3986, section 3.3, and the slash between segments).
bool isPathCharacter(char c) {
    return isAsciiAlphanumeric(static_cast<unsigned char>(c)) || contains(unreservedMarks, c) ||
           contains(subDelimiters, c) || contains(":@/", c);
}

void appendPercentEncoded(std::string& text, char c) {
    const auto byte = static_cast<unsigned char>(c);
    text += '%';
    text += hexDigits[byte >> 4];
    text += hexDigits[byte & 15];
}

std::string percentEncodedPath(std::string_view path) {
    std::string encoded;
    for (const char c : path) {
        if (isPathCharacter(c)) {
            encoded += c;
        } else {
            appendPercentEncoded(encoded, c);
        }
    }
    return encoded;
}

bool isSchemeCharacter(char c) {
    return isAsciiAlphanumeric(static_cast<unsigned char>(c)) || contains("+-.", c);
}

std::optional<std::string> schemeOf(std::string_view text) {
    const auto scheme = text.substr(0, text.find(':'));
    if (scheme.size() == text.size() || scheme.empty()) return std::nullopt;
    const bool beginsWithLetter = isSchemeCharacter(scheme[0]) && !contains("0123456789+-.", scheme[0]);
    if (!beginsWithLetter || !std::ranges::all_of(scheme, isSchemeCharacter)) return std::nullopt;
    return std::string(scheme);
}

/// What stands between the two slashes behind the scheme and the path, the query or the fragment. Web engines
/// read a backslash as a slash: what stands behind one is never a host.
std::optional<std::string_view> authorityIn(std::string_view behindScheme) {
    if (!behindScheme.starts_with("//")) return std::nullopt;
    const auto rest = behindScheme.substr(2);
    return rest.substr(0, rest.find_first_of("/?#\\"));
}

struct HostAndPort {
    std::optional<std::string> host;
    std::optional<std::int64_t> port;
};

std::optional<std::int64_t> numberIn(std::string_view digits) {
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc() || digits.empty()) return std::nullopt;
    return value;
}

/// Host and port of an authority, or none when it is not made of these.
std::optional<HostAndPort> partsOf(std::string_view authority) {
    const auto server = authority.substr(authority.rfind('@') + 1);
    // The address in brackets has colons of its own.
    const auto hostEnd =
        server.starts_with('[') ? server.find(']') + 1 : std::min(server.find(':'), server.size());
    auto host = server.substr(0, hostEnd);
    const auto port = server.substr(hostEnd);
    if (host.starts_with('[')) host = host.substr(1, host.size() - 2);
    const bool isPort =
        port.empty() || (port[0] == ':' && port.find_first_not_of("0123456789", 1) == std::string_view::npos);
    if (!isPort || host.find_first_of("[]") != std::string_view::npos) return std::nullopt;
    return HostAndPort{
        host.empty() ? std::nullopt : std::optional(std::string(host)),
        port.empty() ? std::nullopt : numberIn(port.substr(1))};
}

} // namespace

std::optional<URL> URL::URLWithString(std::string_view text) {
    auto url = reported(text);
    if (!url || !url->scheme_ || !url->isWhole_) return std::nullopt;
    return url;
}

std::optional<URL> URL::reported(std::string_view text) {
    if (text.empty()) return std::nullopt;
    URL url;
    url.absoluteString_ = text;
    url.scheme_ = schemeOf(text);
    const auto authority = authorityIn(text.substr(url.scheme_ ? url.scheme_->size() + 1 : 0));
    if (!authority) return url;
    const auto parts = partsOf(*authority);
    url.isWhole_ = parts.has_value();
    if (parts) {
        url.host_ = parts->host;
        url.port_ = parts->port;
    }
    return url;
}

URL URL::fileURLWithPath(const std::filesystem::path& path) {
    URL url;
    url.absoluteString_ = "file://" + percentEncodedPath(path.native());
    url.scheme_ = "file";
    return url;
}

URL URL::URLByAppendingPathComponent(std::string_view path) const {
    URL url = *this;
    const auto pathEnd = std::min(url.absoluteString_.find_first_of("?#"), url.absoluteString_.size());
    std::string appended = percentEncodedPath(path);
    if (pathEnd == 0 || url.absoluteString_[pathEnd - 1] != '/') appended.insert(0, "/");
    url.absoluteString_.insert(pathEnd, appended);
    return url;
}

} // namespace harbrook
