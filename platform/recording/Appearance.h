#pragma once

#include "platform/Color.h"

#include <algorithm>
#include <optional>

namespace harbrook::recording {

/// An appearance that fits one name, or none. It keeps the names it was asked about.
class Appearance final : public harbrook::Appearance {
public:
    [[nodiscard]] static Appearance light() { return Appearance(AppearanceName::NSAppearanceNameAqua); }
    [[nodiscard]] static Appearance dark() { return Appearance(AppearanceName::NSAppearanceNameDarkAqua); }
    /// One that matches neither, such as a vendor's own.
    [[nodiscard]] static Appearance neither() { return Appearance(std::nullopt); }

    [[nodiscard]] std::optional<AppearanceName> bestMatchFromAppearancesWithNames(
        const std::vector<AppearanceName>& names) const override {
        asked_ = names;
        const bool fits = name_ && std::ranges::find(names, *name_) != names.end();
        return fits ? name_ : std::nullopt;
    }

    [[nodiscard]] const std::vector<AppearanceName>& asked() const { return asked_; }

private:
    explicit Appearance(std::optional<AppearanceName> name) : name_(name) {}

    std::optional<AppearanceName> name_;
    mutable std::vector<AppearanceName> asked_;
};

} // namespace harbrook::recording
