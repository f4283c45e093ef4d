#include "platform/gtk/status/MenuVariant.h"

#include "platform/gtk/bus/VariantText.h"
#include "platform/gtk/foundation/Mnemonic.h"

#include <algorithm>

namespace harbrook::gtk {

namespace {

class PropertyBuilder {
public:
    explicit PropertyBuilder(const PropertyNames& names) : names_(names) {
        g_variant_builder_init(&builder_, G_VARIANT_TYPE_VARDICT);
    }

    [[nodiscard]] bool wants(const char* name) const {
        return names_.empty() || std::ranges::find(names_, name) != names_.end();
    }
    void add(const char* name, GVariant* value) { g_variant_builder_add(&builder_, "{sv}", name, value); }
    GVariant* finish() { return g_variant_builder_end(&builder_); }

private:
    const PropertyNames& names_;
    GVariantBuilder builder_;
};

/// The key presses of a key equivalent, as `aas`: Command is the Control key here, and Control is Alt.
GVariant* shortcut(const MenuItem& item) {
    GVariantBuilder keys;
    g_variant_builder_init(&keys, G_VARIANT_TYPE("as"));
    const auto mask = item.keyEquivalentModifierMask;
    const auto key = item.keyEquivalent.front();
    const auto isUpper = g_ascii_isupper(key) != 0;
    if (mask & NSEventModifierFlagCommand) g_variant_builder_add(&keys, "s", "Control");
    if (mask & (NSEventModifierFlagControl | NSEventModifierFlagOption)) {
        g_variant_builder_add(&keys, "s", "Alt");
    }
    if (isUpper || (mask & NSEventModifierFlagShift)) g_variant_builder_add(&keys, "s", "Shift");
    const auto name = isUpper ? std::string(1, g_ascii_tolower(key)) : item.keyEquivalent;
    g_variant_builder_add_value(&keys, textVariant(name));
    GVariant* press = g_variant_builder_end(&keys);
    return g_variant_new_array(nullptr, &press, 1);
}

} // namespace

GVariant* menuProperties(const MenuItem* item, const PropertyNames& names) {
    PropertyBuilder properties(names);
    if (item && item->isSeparator) {
        if (properties.wants("type")) properties.add("type", g_variant_new_string("separator"));
        return properties.finish();
    }
    if (item) {
        if (properties.wants("label"))
            properties.add("label", textVariant(labelWithoutMnemonic(item->title)));
        if (!item->isEnabled() && properties.wants("enabled")) {
            properties.add("enabled", g_variant_new_boolean(FALSE));
        }
        if (!item->keyEquivalent.empty() && properties.wants("shortcut")) {
            properties.add("shortcut", shortcut(*item));
        }
    }
    if ((!item || item->submenu) && properties.wants("children-display")) {
        properties.add("children-display", g_variant_new_string("submenu"));
    }
    return properties.finish();
}

GVariant* menuPropertyDefault(std::string_view name) {
    if (name == "enabled" || name == "visible") return g_variant_ref_sink(g_variant_new_boolean(TRUE));
    if (name == "type") return g_variant_ref_sink(g_variant_new_string("standard"));
    if (name == "label" || name == "children-display") return g_variant_ref_sink(g_variant_new_string(""));
    return nullptr;
}

GVariant* changeableMenuProperties(const MenuItem& item) {
    const PropertyNames all;
    PropertyBuilder properties(all);
    properties.add("label", textVariant(labelWithoutMnemonic(item.title)));
    properties.add("enabled", g_variant_new_boolean(item.isEnabled() ? TRUE : FALSE));
    return properties.finish();
}

GVariant* menuPropertiesOfRows(
    const MenuLayout& layout, const std::vector<std::int32_t>& ids, const PropertyNames& names) {
    GVariantBuilder answer;
    g_variant_builder_init(&answer, G_VARIANT_TYPE("a(ia{sv})"));
    const auto add = [&](const MenuLayout::Row& row) {
        g_variant_builder_add(&answer, "(i@a{sv})", row.id, menuProperties(row.item, names));
    };
    std::vector<bool> added(layout.rows().size());
    for (const auto id : ids) {
        const auto index = layout.indexOf(id);
        if (!index || added[*index]) continue;
        added[*index] = true;
        add(layout.rows()[*index]);
    }
    if (ids.empty()) {
        for (const auto& row : layout.rows())
            add(row);
    }
    return g_variant_builder_end(&answer);
}

GVariant* menuTree(const MenuLayout& layout, std::size_t index, int depth, const PropertyNames& names) {
    const auto& row = layout.rows()[index];
    GVariantBuilder children;
    g_variant_builder_init(&children, G_VARIANT_TYPE("av"));
    if (depth != 0) {
        for (auto child = index + 1; child < row.end; child = layout.rows()[child].end) {
            g_variant_builder_add(&children, "v", menuTree(layout, child, depth - 1, names));
        }
    }
    GVariant* parts[] = {
        g_variant_new_int32(row.id), menuProperties(row.item, names), g_variant_builder_end(&children)};
    return g_variant_new_tuple(parts, G_N_ELEMENTS(parts));
}

} // namespace harbrook::gtk
