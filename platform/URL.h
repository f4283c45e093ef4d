#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace harbrook {

/// A uniform resource locator (RFC 3986), taken apart once and immutable from then on.
/// A *file* that the shell reads or writes itself is a `std::filesystem::path`, not a URL.
class URL {
public:
    /// None when `text` is not a URL. Characters that RFC 3986 does not allow but that web engines leave in
    /// the addresses they report (such as `|` or `[` in a query) are percent-encoded first.
    [[nodiscard]] static std::optional<URL> URLWithString(std::string_view text);

    /// The file URL of an absolute path.
    [[nodiscard]] static URL fileURLWithPath(const std::filesystem::path& path);

    /// This URL with `path` appended to its path. Slashes in `path` separate components; characters that may
    /// not stand in a URL path are percent-encoded.
    [[nodiscard]] URL URLByAppendingPathComponent(std::string_view path) const;

    [[nodiscard]] const std::string& absoluteString() const { return absoluteString_; }

    /// The scheme as it is written, or none when the URL is relative.
    [[nodiscard]] const std::optional<std::string>& scheme() const { return scheme_; }

    /// The host as it is written, without the brackets of an IPv6 address; none without an authority, or with
    /// an empty host.
    [[nodiscard]] const std::optional<std::string>& host() const { return host_; }

    /// The explicit port; none when the URL names none or when it does not fit the type.
    [[nodiscard]] const std::optional<std::int64_t>& port() const { return port_; }

    bool operator==(const URL& other) const { return absoluteString_ == other.absoluteString_; }

private:
    URL() = default;

    std::string absoluteString_;
    std::optional<std::string> scheme_;
    std::optional<std::string> host_;
    std::optional<std::int64_t> port_;
};

} // namespace harbrook
