#include "platform/gtk/web/ScriptValue.h"

#include "platform/gtk/foundation/GObjectPtr.h"
#include "platform/gtk/web/ScriptJSON.h"

#include <string>

namespace harbrook::gtk {

namespace {

std::optional<Value> compositeFromScript(JSCValue* value) {
    const GCharPtr text(jsc_value_to_json(value, 0));
    if (text) return valueFromScriptJSON(text.get());
    // The failed conversion leaves its exception behind, which would be taken for one of a later call.
    jsc_context_clear_exception(jsc_value_get_context(value));
    return std::nullopt;
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
