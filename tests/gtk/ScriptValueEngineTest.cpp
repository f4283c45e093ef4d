// A page's values as they come out of the script engine.

#include "platform/gtk/foundation/GObjectPtr.h"
#include "platform/gtk/web/ScriptValue.h"

#include <gtest/gtest.h>

#include <optional>

namespace harbrook::tests {
namespace {

using namespace gtk;

class ScriptValue : public testing::Test {
protected:
    [[nodiscard]] std::optional<Value> valueOf(const char* script) {
        const auto value = GObjectPtr<JSCValue>::adopt(jsc_context_evaluate(context_.get(), script, -1));
        return valueFromScript(value.get());
    }

    GObjectPtr<JSCContext> context_ = GObjectPtr<JSCContext>::adopt(jsc_context_new());
};

TEST_F(ScriptValue, is_of_the_type_that_it_has_in_the_page) {
    EXPECT_EQ(valueOf("'word'"), Value("word"));
    EXPECT_EQ(valueOf("7.5"), Value(7.5));
    EXPECT_EQ(valueOf("true"), Value(true));
    EXPECT_EQ(valueOf("null"), Value());
    EXPECT_EQ(valueOf("[1, 'two', [null]]"), Value(Value::Array{1.0, "two", Value::Array{Value()}}));
    EXPECT_EQ(
        valueOf("({k: 'title', v: {n: 1}})"),
        Value(Value::Dictionary{{"k", "title"}, {"v", Value::Dictionary{{"n", 1.0}}}}));
}

TEST_F(ScriptValue, is_no_text_where_only_json_would_make_one_of_it) {
    const Value object = Value::Dictionary{};
    for (const auto* script : {"new Date()", "new String('x')", "new Number(1)", "new Boolean(true)"})
        EXPECT_EQ(valueOf(script), object) << script;
    EXPECT_EQ(
        valueOf("({k: 'title', v: new Date(), w: [new String('x')]})"),
        Value(Value::Dictionary{{"k", "title"}, {"v", object}, {"w", Value::Array{object}}}));
    EXPECT_EQ(valueOf("({v: {toJSON() { return 'x' }}})"), Value(Value::Dictionary{{"v", object}}));
}

TEST_F(ScriptValue, is_none_where_there_is_no_form_for_it) {
    for (const auto* script :
         {"undefined", "(() => 1)", "var a = []; a.push(a); a", "({n: 1n})",
          "var d = []; for (var i = 0; i < 1000; ++i) d = [d]; d"}) {
        EXPECT_FALSE(valueOf(script)) << script;
        EXPECT_EQ(jsc_context_get_exception(context_.get()), nullptr) << script;
    }
}

} // namespace
} // namespace harbrook::tests
