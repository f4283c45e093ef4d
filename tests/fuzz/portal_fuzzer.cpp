// Any answer of the desktop's file dialog: a folder comes only of a response that says success, and is
// absolute.

#include "platform/gtk/window/PortalFolderChooser.h"
#include "tests/fuzz/FuzzInput.h"
#include "tests/fuzz/FuzzVariants.h"

#include <array>

namespace {

using namespace harbrook;

/// A signal may carry anything; the first kind is a response.
constexpr std::array kinds = {"(ua{sv})", "(u)", "()", "(sa{sv})", "(ua{ss})", "(v)", "(ua{sas})"};

/// A response in the right shape, with any text for the address.
gtk::GVariantPtr responseWith(guint32 number, std::string_view address) {
    const gtk::GCharPtr valid(g_utf8_make_valid(address.data(), static_cast<gssize>(address.size())));
    const char* addresses[] = {valid.get(), nullptr};
    GVariantBuilder results;
    g_variant_builder_init(&results, G_VARIANT_TYPE_VARDICT);
    g_variant_builder_add(&results, "{sv}", "uris", g_variant_new_strv(addresses, 1));
    return gtk::GVariantPtr(g_variant_ref_sink(g_variant_new("(ua{sv})", number, &results)));
}

void check(GVariant* arguments) {
    const auto response = gtk::portalResponse(arguments);
    fuzz::require(response.has_value() == (g_variant_is_of_type(arguments, G_VARIANT_TYPE("(ua{sv})")) != 0));
    if (!response || !response->folder) return;
    guint32 number = 1;
    g_variant_get_child(arguments, 0, "u", &number);
    fuzz::require(number == 0 && response->folder->is_absolute());
    fuzz::require(response->folder->native().find('\0') == std::string::npos);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    fuzz::failAtComplaints();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    check(fuzz::variantOf(kinds.at(data[0] % kinds.size()), data + 1, size - 1).get());
    const auto text = fuzz::textOf(data, size);
    check(responseWith(0, text).get());
    check(responseWith(data[0], "file:///" + std::string(text)).get());
    static_cast<void>(gtk::portalVersion(fuzz::variantOf("(v)", data, size).get()));
    return 0;
}
