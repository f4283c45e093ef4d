#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace harbrook {

/// A uniform resource locator: its text exactly as it was given, and what can be told of its parts. Web
/// engines report addresses in one spelling (WHATWG URL Standard), which is what is taken apart here. A
/// *file* that the shell reads or writes itself is a `std::filesystem::path`, not a URL.
class URL {
public:
    /// None when `text` has no scheme, or an authority that is not made of host and port.
    [[nodiscard]] static std::optional<URL> URLWithString(std::string_view text);

    /// An address that a web engine has reported, whatever it looks like: parts that cannot be told are none.
    /// None when `text` is empty.
    [[nodiscard]] static std::optional<URL> reported(std::string_view text);

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
    bool isWhole_ = true;
};

} // namespace harbrook
