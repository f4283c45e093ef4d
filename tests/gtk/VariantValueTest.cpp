#include "platform/gtk/bus/VariantValue.h"

#include "platform/gtk/bus/DistributedNotificationCenter.h"

#include <gtest/gtest.h>

namespace harbrook::tests {

namespace {

using namespace gtk;

GVariantPtr parsed(const char* text) {
    return GVariantPtr(g_variant_ref_sink(g_variant_new_parsed(text)));
}

gtk::DistributedNotificationCenter::UserInfo userInfo(const char* arguments) {
    return userInfoFromArguments(parsed(arguments).get());
}

TEST(VariantValue, keeps_the_types_apart) {
    EXPECT_EQ(valueFromVariant(parsed("'text'").get()), Value("text"));
    EXPECT_EQ(valueFromVariant(parsed("true").get()), Value(true));
    EXPECT_EQ(valueFromVariant(parsed("byte 7").get()), Value(7.0));
    EXPECT_EQ(valueFromVariant(parsed("-3").get()), Value(-3.0));
    EXPECT_EQ(valueFromVariant(parsed("uint64 5").get()), Value(5.0));
    EXPECT_EQ(valueFromVariant(parsed("1.5").get()), Value(1.5));
    EXPECT_EQ(valueFromVariant(parsed("<<'deep'>>").get()), Value("deep"));
    EXPECT_EQ(valueFromVariant(parsed("['a', 'b']").get()), Value(Value::Array{Value("a"), Value("b")}));
    EXPECT_EQ(valueFromVariant(parsed("(1, 'b')").get()), Value(Value::Array{Value(1.0), Value("b")}));
    EXPECT_EQ(valueFromVariant(parsed("{'a': <1>}").get()), Value(Value::Dictionary{{"a", Value(1.0)}}));
    EXPECT_EQ(valueFromVariant(parsed("{1: 'a'}").get()).as<Value::Dictionary>(), nullptr);
}

TEST(UserInfo, is_the_one_dictionary_of_a_signal) {
    const Value::Dictionary expected = {{"hash", Value("#/ports")}};
    EXPECT_EQ(userInfo("({'hash': <'#/ports'>},)"), expected);
    EXPECT_EQ(userInfo("({'hash': '#/ports'},)"), expected);
    EXPECT_EQ(userInfo("(@a{sv} {},)"), Value::Dictionary());
    EXPECT_EQ(userInfo("({'hash': <3>},)"), (Value::Dictionary{{"hash", Value(3.0)}}));
}

TEST(UserInfo, is_none_for_any_other_arguments) {
    EXPECT_EQ(userInfo("()"), std::nullopt);
    EXPECT_EQ(userInfo("('hash',)"), std::nullopt);
    EXPECT_EQ(userInfo("({'hash': 'a'}, 1)"), std::nullopt);
    EXPECT_EQ(userInfo("({1: 'a'},)"), std::nullopt);
}

} // namespace

} // namespace harbrook::tests
