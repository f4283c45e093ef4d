// `jsString` in the script engine that runs the page: what a literal evaluates to is the text it was made
// from.

#include "platform/gtk/foundation/GObjectPtr.h"
#include "window/JSString.h"

#include <gtest/gtest.h>
#include <jsc/jsc.h>

#include <random>
#include <string>
#include <vector>

namespace harbrook::tests {
namespace {

using namespace gtk;

/// UTF-8 of a character that is likely to need care: control characters, quotes, slashes, line separators,
/// letters of several lengths, and any other now and then.
std::string randomCharacter(std::mt19937& random) {
    static const std::vector<std::string> delicate = {"\"",        "\\",
                                                      "/",         "'",
                                                      "`",         "${",
                                                      "</script>", "\n",
                                                      "\r",        "\t",
                                                      "\b",        "\f",
                                                      "\v",        "\x7f",
                                                      "a",         "é",
                                                      "ß",         "漢",
                                                      "\u2028",    "\u2029",
                                                      "\ufeff",    "\uffff",
                                                      "😀",         "𐏿",
                                                      "\u0301",    std::string(1, '\0')};
    if (random() % 3 != 0) return delicate[random() % delicate.size()];
    const auto character = static_cast<gunichar>(random() % 0x110000);
    if (character >= 0xD800 && character < 0xE000) return "x";
    char bytes[6];
    return {bytes, static_cast<std::size_t>(g_unichar_to_utf8(character, bytes))};
}

std::string randomText(std::mt19937& random) {
    std::string text;
    for (auto length = random() % 12; length > 0; --length)
        text += randomCharacter(random);
    return text;
}

TEST(JSStringInTheEngine, gives_a_million_random_texts_back) {
    constexpr int batches = 1000;
    constexpr unsigned perBatch = 1000;
    std::mt19937 random(20261121);
    const auto context = GObjectPtr<JSCContext>::adopt(jsc_context_new());
    for (int batch = 0; batch < batches; ++batch) {
        std::vector<std::string> texts;
        std::string script = "[";
        for (unsigned i = 0; i < perBatch; ++i) {
            texts.push_back(randomText(random));
            script += jsString(texts.back()) + ",";
        }
        script += "]";
        const auto array = GObjectPtr<JSCValue>::adopt(
            jsc_context_evaluate(context.get(), script.data(), static_cast<gssize>(script.size())));
        ASSERT_FALSE(jsc_context_get_exception(context.get()));
        for (unsigned i = 0; i < perBatch; ++i) {
            const auto value =
                GObjectPtr<JSCValue>::adopt(jsc_value_object_get_property_at_index(array.get(), i));
            const GBytesPtr bytes(jsc_value_to_string_as_bytes(value.get()));
            gsize size = 0;
            const auto* data = static_cast<const char*>(g_bytes_get_data(bytes.get(), &size));
            ASSERT_EQ(std::string_view(data ? data : "", size), texts[i]) << jsString(texts[i]);
        }
    }
}

} // namespace
} // namespace harbrook::tests
