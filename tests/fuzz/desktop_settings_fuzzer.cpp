// Any answer of a desktop about its settings: only the one right type says anything, however often it is
// wrapped.

#include "platform/gtk/bus/ColorScheme.h"
#include "platform/gtk/status/PanelTone.h"
#include "tests/fuzz/FuzzInput.h"
#include "tests/fuzz/FuzzVariants.h"

namespace {

using namespace harbrook;

/// Whether the innermost of what is wrapped has that type.
bool holds(gtk::GVariantPtr value, const GVariantType* type) {
    while (g_variant_is_of_type(value.get(), G_VARIANT_TYPE_VARIANT))
        value.reset(g_variant_get_variant(value.get()));
    return g_variant_is_of_type(value.get(), type);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    fuzz::failAtComplaints();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Both are asked for with this type for the answer.
    const auto answer = fuzz::variantOf("(v)", data, size);
    gtk::GVariantPtr value(g_variant_get_child_value(answer.get(), 0));
    const auto scheme = gtk::colorSchemeFromPortal(value.get());
    const bool isOn = gtk::isSwitchedOn(answer.get());
    fuzz::require(scheme.has_value() == holds(std::move(value), G_VARIANT_TYPE_UINT32));

    gtk::GVariantPtr boxed(g_variant_get_child_value(answer.get(), 0));
    if (isOn) fuzz::require(holds(std::move(boxed), G_VARIANT_TYPE_BOOLEAN));

    const auto text = fuzz::textOf(data, size);
    fuzz::require(
        gtk::toneOfTheme(text).has_value() == (text.ends_with("-dark") || text.ends_with("-light")));
    const bool isKnown = text == "prefer-dark" || text == "prefer-light";
    fuzz::require(isKnown == (gtk::colorSchemeFromSettings(text) != gtk::ColorScheme::noPreference));
    return 0;
}
