// Any bytes that come over a bus as a notification's dictionary: they become a value of the same shape, and a
// screenshot request only with a hash.

#include "platform/gtk/bus/VariantValue.h"
#include "platform/gtk/foundation/GObjectPtr.h"
#include "shots/ScreenshotRequest.h"
#include "tests/fuzz/FuzzInput.h"

#include <cstring>
#include <iterator>

namespace {

using namespace harbrook;

constexpr const char* types[] = {"a{sv}", "v",       "a{ss}", "(sva{sv})", "av",
                                 "aas",   "(btydo)", "a{xv}", "a{yv}"};

gtk::GVariantPtr variantFrom(const char* type, const std::uint8_t* data, std::size_t size) {
    // The library wants a copy that is aligned.
    void* copy = g_malloc(size + 1);
    if (size > 0) std::memcpy(copy, data, size);
    return gtk::GVariantPtr(
        g_variant_ref_sink(g_variant_new_from_data(G_VARIANT_TYPE(type), copy, size, FALSE, g_free, copy)));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    // What the library complains of is a failure.
    g_log_set_always_fatal(static_cast<GLogLevelFlags>(G_LOG_LEVEL_CRITICAL | G_LOG_FATAL_MASK));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const auto* type = types[data[0] % std::size(types)];
    const auto value = gtk::valueFromVariant(variantFrom(type, data + 1, size - 1).get());
    const auto* dictionary = value.as<Value::Dictionary>();
    if (std::strcmp(type, "v") != 0) {
        fuzz::require((dictionary != nullptr) == (std::strncmp(type, "a{s", 3) == 0));
    }
    const auto request = screenshotRequest(dictionary ? std::optional(*dictionary) : std::nullopt);
    fuzz::require(request.has_value() == (dictionary && stringForKey(*dictionary, "hash")));
    return 0;
}
