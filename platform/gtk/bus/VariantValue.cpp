#include "platform/gtk/bus/VariantValue.h"

#include "platform/gtk/foundation/GObjectPtr.h"

namespace harbrook::gtk {

namespace {

Value arrayFromVariant(GVariant* variant) {
    Value::Array array;
    const auto count = g_variant_n_children(variant);
    for (gsize i = 0; i < count; ++i) {
        const GVariantPtr child(g_variant_get_child_value(variant, i));
        array.push_back(valueFromVariant(child.get()));
    }
    return array;
}

Value dictionaryFromVariant(GVariant* variant) {
    Value::Dictionary dictionary;
    const auto count = g_variant_n_children(variant);
    for (gsize i = 0; i < count; ++i) {
        const GVariantPtr entry(g_variant_get_child_value(variant, i));
        const GVariantPtr key(g_variant_get_child_value(entry.get(), 0));
        const GVariantPtr value(g_variant_get_child_value(entry.get(), 1));
        dictionary[g_variant_get_string(key.get(), nullptr)] = valueFromVariant(value.get());
    }
    return dictionary;
}

bool isDictionary(GVariant* variant) {
    return g_variant_is_of_type(variant, G_VARIANT_TYPE("a{s*}")) != 0;
}

} // namespace

Value valueFromVariant(GVariant* variant) {
    switch (g_variant_classify(variant)) {
    case G_VARIANT_CLASS_BOOLEAN:
        return g_variant_get_boolean(variant) != 0;
    case G_VARIANT_CLASS_BYTE:
        return static_cast<double>(g_variant_get_byte(variant));
    case G_VARIANT_CLASS_INT16:
        return static_cast<double>(g_variant_get_int16(variant));
    case G_VARIANT_CLASS_UINT16:
        return static_cast<double>(g_variant_get_uint16(variant));
    case G_VARIANT_CLASS_INT32:
        return static_cast<double>(g_variant_get_int32(variant));
    case G_VARIANT_CLASS_UINT32:
        return static_cast<double>(g_variant_get_uint32(variant));
    case G_VARIANT_CLASS_INT64:
        return static_cast<double>(g_variant_get_int64(variant));
    case G_VARIANT_CLASS_UINT64:
        return static_cast<double>(g_variant_get_uint64(variant));
    case G_VARIANT_CLASS_DOUBLE:
        return g_variant_get_double(variant);
    case G_VARIANT_CLASS_STRING:
    case G_VARIANT_CLASS_OBJECT_PATH:
    case G_VARIANT_CLASS_SIGNATURE:
        return g_variant_get_string(variant, nullptr);
    case G_VARIANT_CLASS_VARIANT: {
        const GVariantPtr inner(g_variant_get_variant(variant));
        return valueFromVariant(inner.get());
    }
    case G_VARIANT_CLASS_ARRAY:
        return isDictionary(variant) ? dictionaryFromVariant(variant) : arrayFromVariant(variant);
    case G_VARIANT_CLASS_TUPLE:
        return arrayFromVariant(variant);
    default:
        return {};
    }
}

} // namespace harbrook::gtk
