#pragma once

#include <string_view>

/// What the product calls itself and where it can be reached. The addresses are under a reserved domain (RFC
/// 2606) until the product has its own.
namespace harbrook::product {

inline constexpr std::string_view name = "Harbrook";
inline constexpr std::string_view website = "https://harbrook.example";
inline constexpr std::string_view supportMail = "mailto:support@harbrook.example?subject=Harbrook";

/// The credits of the About panel: a sentence, a blank line, and who publishes it.
inline constexpr std::string_view credits =
    "Harbrook shows every project, port and version on your machine, and why a project will not start.\n"
    "\n"
    "Published by Brackenforge\n"
    "Brackenforge Software, registered under number 0000000\n"
    "Registered office: 1 Example Street, Exampleton\n"
    "harbrook.example · support@harbrook.example";

} // namespace harbrook::product
