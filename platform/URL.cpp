#include "platform/URL.h"

#include <uriparser/Uri.h>

#include <algorithm>
#include <charconv>
#include <memory>

namespace harbrook {

namespace {

constexpr std::string_view unreservedMarks = "-._~";
constexpr std::string_view subDelimiters = "!$&'()*+,;=";
constexpr std::string_view hexDigits = "0123456789ABCDEF";

bool isAsciiAlphanumeric(unsigned char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool isHexDigit(unsigned char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
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

/// `text` with the backslashes of a web address in front of its query turned into slashes, which is how every
/// web engine reads them (WHATWG URL Standard, special schemes): what stands behind one is never a host.
std::string withSlashesForBackslashes(std::string_view text) {
    std::string result(text);
    if (!text.starts_with("http:") && !text.starts_with("https:")) return result;
    const auto end = std::min(text.find_first_of("?#"), text.size());
    std::replace(result.begin(), result.begin() + static_cast<std::ptrdiff_t>(end), '\\', '/');
    return result;
}

/// `text` with everything percent-encoded that RFC 3986 allows nowhere, or not where it stands.
std::string withDisallowedCharactersEncoded(std::string_view text) {
    const auto authority = text.find("://");
    const auto authorityEnd = authority == std::string_view::npos
                                  ? 0
                                  : std::min(text.find_first_of("/?#", authority + 3), text.size());
    const auto fragment = text.find('#');
    std::string encoded;
    encoded.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const bool isEscape =
            c == '%' && i + 2 < text.size() && isHexDigit(text[i + 1]) && isHexDigit(text[i + 2]);
        const bool isBracketOfAddress = (c == '[' || c == ']') && i < authorityEnd;
        const bool isDelimiter = c == '?' || (c == '#' && i == fragment);
        if (isPathCharacter(c) || isEscape || isBracketOfAddress || isDelimiter) {
            encoded += c;
        } else {
            appendPercentEncoded(encoded, c);
        }
    }
    return encoded;
}

std::optional<std::string> textIn(const UriTextRangeA& range) {
    if (range.first == nullptr || range.first == range.afterLast) return std::nullopt;
    return std::string(range.first, range.afterLast);
}

std::optional<std::int64_t> numberIn(const UriTextRangeA& range) {
    std::int64_t value = 0;
    if (range.first == nullptr) return std::nullopt;
    const auto [end, error] = std::from_chars(range.first, range.afterLast, value);
    if (error != std::errc() || end != range.afterLast) return std::nullopt;
    return value;
}

} // namespace

std::optional<URL> URL::URLWithString(std::string_view text) {
    if (text.empty()) return std::nullopt;
    URL url;
    url.absoluteString_ = withDisallowedCharactersEncoded(withSlashesForBackslashes(text));

    UriUriA parts{};
    const char* first = url.absoluteString_.data();
    if (uriParseSingleUriExA(&parts, first, first + url.absoluteString_.size(), nullptr) != URI_SUCCESS) {
        return std::nullopt;
    }
    const auto release = [](UriUriA* uri) { uriFreeUriMembersA(uri); };
    const std::unique_ptr<UriUriA, decltype(release)> owner(&parts, release);

    url.scheme_ = textIn(parts.scheme);
    url.host_ = textIn(parts.hostText);
    url.port_ = numberIn(parts.portText);
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
