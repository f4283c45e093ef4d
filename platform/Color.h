#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

namespace harbrook {

/// A concrete colour in the sRGB space; components run from 0 to 1.
struct SRGBColor {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;
    bool operator==(const SRGBColor&) const = default;
};

enum class AppearanceName { NSAppearanceNameAqua, NSAppearanceNameDarkAqua };

/// The look a colour is resolved for: light, dark, or something that is neither.
class Appearance {
public:
    virtual ~Appearance() = default;

    /// The entry of `names` that fits this appearance best, or none.
    [[nodiscard]] virtual std::optional<AppearanceName> bestMatchFromAppearancesWithNames(
        const std::vector<AppearanceName>& names) const = 0;
};

/// Colours that the platform chooses and keeps in step with its settings.
enum class SystemColor { secondaryLabelColor };

/// A colour: fixed, chosen by the platform, or resolved anew for each appearance.
/// A dynamic provider may be called on any thread, whenever the platform resolves the colour. Copies of a
/// dynamic colour are that very colour, wherever it is used; another made with the same provider is another.
class Color {
public:
    using DynamicProvider = std::function<SRGBColor(const Appearance&)>;
    using Dynamic = std::shared_ptr<const DynamicProvider>;

    Color(SRGBColor color) : source_(color) {}
    Color(SystemColor color) : source_(color) {}

    [[nodiscard]] static Color secondaryLabelColor() { return SystemColor::secondaryLabelColor; }
    [[nodiscard]] static Color blackColor() { return SRGBColor{0, 0, 0, 1}; }
    [[nodiscard]] static Color colorWithDynamicProvider(DynamicProvider provider) {
        return Color(std::make_shared<const DynamicProvider>(std::move(provider)));
    }

    [[nodiscard]] const std::variant<SRGBColor, SystemColor, Dynamic>& source() const { return source_; }

    bool operator==(const Color&) const = default;

private:
    explicit Color(Dynamic provider) : source_(std::move(provider)) {}

    std::variant<SRGBColor, SystemColor, Dynamic> source_;
};

} // namespace harbrook
