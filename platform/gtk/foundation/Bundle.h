#pragma once

#include "platform/Files.h"

namespace harbrook::gtk {

class Bundle final : public harbrook::Bundle {
public:
    /// The resources under `directory`.
    explicit Bundle(std::filesystem::path directory) : directory_(std::move(directory)) {}

    std::optional<std::filesystem::path> URLForResource(
        std::string_view name, std::string_view extension, std::string_view subdirectory) override;

private:
    std::filesystem::path directory_;
};

/// The resources that belong to `executable`: `../share/harbrook` from its directory where the program is
/// installed, else `resources` beside it, as in a build tree.
[[nodiscard]] std::filesystem::path resourceDirectory(const std::filesystem::path& executable);

/// The theme folder of the icons that are installed with the running program. The tree can be anywhere,
/// outside the folders where icons are looked for.
[[nodiscard]] std::filesystem::path iconDirectory();

/// The file of the running program, with symbolic links resolved.
[[nodiscard]] std::filesystem::path currentExecutable();

} // namespace harbrook::gtk
