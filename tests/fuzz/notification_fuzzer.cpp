// Any arguments that a signal on the bus can carry: only one dictionary with text for its keys is a
// notification's, and only one with a hash asks for a picture.

#include "platform/gtk/bus/DistributedNotificationCenter.h"
#include "shots/ScreenshotRequest.h"
#include "tests/fuzz/FuzzInput.h"
#include "tests/fuzz/FuzzVariants.h"

#include <array>

namespace {

using namespace harbrook;

/// The kinds of arguments, the first byte of an input choosing among them.
constexpr std::array kinds = {
    "(a{sv})",          "(v)",      "(a{ss})", "(a{sa{sv}})", "()",      "(a{iv})", "(sa{sv})",
    "(a{s(ybnqixtd)})", "(a{sav})", "(maas)",  "(a{oag})",    "(a{sh})", "(s)",     "(aaaay)"};

/// What a variant holds, however often it is wrapped.
gtk::GVariantPtr unwrapped(gtk::GVariantPtr variant) {
    while (g_variant_is_of_type(variant.get(), G_VARIANT_TYPE_VARIANT)) {
        variant.reset(g_variant_get_variant(variant.get()));
    }
    return variant;
}

bool isOneDictionary(GVariant* arguments) {
    if (g_variant_n_children(arguments) != 1) return false;
    const auto argument = unwrapped(gtk::GVariantPtr(g_variant_get_child_value(arguments, 0)));
    return g_variant_is_of_type(argument.get(), G_VARIANT_TYPE("a{s*}")) != 0;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    fuzz::failAtComplaints();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const auto arguments = fuzz::variantOf(kinds.at(data[0] % kinds.size()), data + 1, size - 1);
    const auto userInfo = gtk::userInfoFromArguments(arguments.get());
    fuzz::require(userInfo.has_value() == isOneDictionary(arguments.get()));
    if (!userInfo) return 0;
    const auto hash = userInfo->find("hash");
    const bool hasHash = hash != userInfo->end() && hash->second.as<std::string>();
    fuzz::require(screenshotRequest(*userInfo).has_value() == hasHash);
    return 0;
}
