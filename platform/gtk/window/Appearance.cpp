#include "platform/gtk/window/Appearance.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace harbrook::gtk {

namespace {

constexpr auto preferDark = "gtk-application-prefer-dark-theme";

bool themeIsDark(std::string_view theme) {
    return theme.ends_with("-dark") || theme.ends_with("-Dark") || theme.ends_with(":dark");
}

bool settingsAreDark(GtkSettings* settings) {
    gboolean prefersDark = FALSE;
    char* name = nullptr;
    g_object_get(settings, preferDark, &prefersDark, "gtk-theme-name", &name, nullptr);
    const GCharPtr theme(name);
    if (const char* chosen = g_getenv("GTK_THEME")) return prefersDark || themeIsDark(chosen);
    return prefersDark || (theme && themeIsDark(theme.get()));
}

SRGBColor systemColor(SystemColor color, bool dark) {
    switch (color) {
    case SystemColor::secondaryLabelColor:
        // Strong enough to be read on either canvas (at least 4.5 to 1).
        return dark ? SRGBColor{1, 1, 1, 0.6} : SRGBColor{0, 0, 0, 0.6};
    }
    return {};
}

} // namespace

Appearance& Appearance::current() {
    // Never destroyed: its observers may outlive the end of `main`.
    static auto& appearance = *new Appearance;
    return appearance;
}

Appearance::Appearance() : settings_(gtk_settings_get_default()), desktop_([this] { followDesktop(); }) {
    dark_ = settingsAreDark(settings_);
    const auto changed = [](GtkSettings*, GParamSpec*, void* self) noexcept {
        static_cast<Appearance*>(self)->update();
    };
    connections_.add(settings_, "notify::gtk-application-prefer-dark-theme", changed, this);
    connections_.add(settings_, "notify::gtk-theme-name", changed, this);
}

void Appearance::followDesktop() {
    if (g_getenv("GTK_THEME")) return;
    const auto scheme = desktop_.current();
    // Every change, even to the same value, has the toolkit load its style sheets again.
    if (scheme == followed_) return;
    followed_ = scheme;
    if (scheme == ColorScheme::noPreference) {
        gtk_settings_reset_property(settings_, preferDark);
    } else {
        g_object_set(settings_, preferDark, scheme == ColorScheme::dark, nullptr);
    }
}

void Appearance::update() {
    const bool dark = settingsAreDark(settings_);
    if (dark == dark_) return;
    dark_ = dark;
    std::erase_if(observers_, [](const auto& observer) { return observer.expired(); });
    // An observer may come or go while the others are told.
    for (const auto& observer : std::vector(observers_)) {
        if (const auto changed = observer.lock()) (*changed)();
    }
}

std::optional<AppearanceName> Appearance::bestMatchFromAppearancesWithNames(
    const std::vector<AppearanceName>& names) const {
    const auto contains = [&](AppearanceName name) { return std::ranges::find(names, name) != names.end(); };
    if (dark_ && contains(AppearanceName::NSAppearanceNameDarkAqua)) {
        return AppearanceName::NSAppearanceNameDarkAqua;
    }
    if (contains(AppearanceName::NSAppearanceNameAqua)) return AppearanceName::NSAppearanceNameAqua;
    return std::nullopt;
}

GdkRGBA Appearance::resolve(const Color& color) const {
    struct Resolver {
        const Appearance& appearance;
        SRGBColor operator()(const SRGBColor& fixed) const { return fixed; }
        SRGBColor operator()(SystemColor system) const { return systemColor(system, appearance.isDark()); }
        SRGBColor operator()(const Color::Dynamic& provider) const { return (*provider)(appearance); }
    };
    const auto concrete = std::visit(Resolver{*this}, color.source());
    return {
        static_cast<float>(concrete.red), static_cast<float>(concrete.green),
        static_cast<float>(concrete.blue), static_cast<float>(concrete.alpha)};
}

std::shared_ptr<void> Appearance::onChange(std::function<void()> changed) {
    auto observer = std::make_shared<Observer>(std::move(changed));
    observers_.push_back(observer);
    return observer;
}

} // namespace harbrook::gtk
