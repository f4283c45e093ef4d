#pragma once

#include <string>
#include <string_view>

namespace harbrook::gtk {

/// A title for those who take a lone underscore for the mark of a mnemonic, as the toolkit and the hosts of
/// status menus do: its underscores are doubled, and so stand for themselves.
[[nodiscard]] inline std::string labelWithoutMnemonic(std::string_view title) {
    std::string label;
    label.reserve(title.size());
    for (const char character : title)
        label.append(character == '_' ? 2 : 1, character);
    return label;
}

} // namespace harbrook::gtk
