#include "platform/gtk/web/ScriptValue.h"

#include "platform/gtk/foundation/GObjectPtr.h"
#include "platform/gtk/web/ScriptJSON.h"

#include <string>

namespace harbrook::gtk {

namespace {

/// The value as JSON, with what JSON would make a text, a number or a boolean of (a date, an object around
/// one of these) as the object that it is. Null when it has no such form.
GCharPtr jsonOf(JSCValue* value) {
    constexpr auto source =
        "(value => JSON.stringify(value, function (key) {"
        "  const own = this[key];"
        "  const isNoPlainObject = own instanceof Date || own instanceof String || own instanceof Number"
        "    || own instanceof Boolean;"
        "  return isNoPlainObject ? {} : own;"
        "}))";
    auto* context = jsc_value_get_context(value);
    const auto stringify = GObjectPtr<JSCValue>::adopt(jsc_context_evaluate(context, source, -1));
    const auto text = GObjectPtr<JSCValue>::adopt(
        jsc_value_function_call(stringify.get(), JSC_TYPE_VALUE, value, G_TYPE_NONE));
    // A call that fails leaves its exception behind, which would be taken for one of a later call.
    jsc_context_clear_exception(context);
    return GCharPtr(jsc_value_is_string(text.get()) ? jsc_value_to_string(text.get()) : nullptr);
}

std::optional<Value> compositeFromScript(JSCValue* value) {
    const auto text = jsonOf(value);
    return text ? valueFromScriptJSON(text.get()) : std::nullopt;
}

} // namespace

std::optional<Value> valueFromScript(JSCValue* value) {
    if (jsc_value_is_undefined(value) || jsc_value_is_function(value)) return std::nullopt;
    if (jsc_value_is_null(value)) return Value();
    if (jsc_value_is_boolean(value)) return Value(jsc_value_to_boolean(value) == TRUE);
    if (jsc_value_is_number(value)) return Value(jsc_value_to_double(value));
    if (jsc_value_is_string(value)) {
        const GBytesPtr text(jsc_value_to_string_as_bytes(value));
        gsize length = 0;
        const auto* bytes = static_cast<const char*>(g_bytes_get_data(text.get(), &length));
        return Value(std::string(bytes, length));
    }
    return compositeFromScript(value);
}

} // namespace harbrook::gtk
