// Any calls of the menu's interface on the bus, with menus changing in between: each is answered once, with a
// value of the right type or an error, and only what can be chosen is performed.

#include "platform/gtk/bus/DBusAnswer.h"
#include "platform/gtk/status/DBusMenu.h"
#include "tests/fuzz/FuzzInput.h"
#include "tests/fuzz/FuzzVariants.h"

#include <array>
#include <string>

namespace {

using namespace harbrook;

int answers = 0;
std::string answerType;

struct Method {
    const char* name;
    const char* takes;
    const char* gives;
};

constexpr std::array methods = {
    Method{"GetLayout", "(iias)", "(u(ia{sv}av))"}, Method{"GetGroupProperties", "(aias)", "(a(ia{sv}))"},
    Method{"GetProperty", "(is)", "(v)"},           Method{"Event", "(isvu)", "()"},
    Method{"EventGroup", "(a(isvu))", "(ai)"},      Method{"AboutToShow", "(i)", "(b)"},
    Method{"AboutToShowGroup", "(ai)", "(aiai)"},
};

} // namespace

// In the place of the bus.
namespace harbrook::gtk {

void returnValue(GObjectPtr<GDBusMethodInvocation> /*invocation*/, GVariant* value) {
    ++answers;
    const GVariantPtr owned(value ? g_variant_take_ref(value) : nullptr);
    answerType = value ? g_variant_get_type_string(value) : "()";
}

void returnInvalidArguments(GObjectPtr<GDBusMethodInvocation> /*invocation*/, const std::string& message) {
    ++answers;
    fuzz::require(!message.empty());
    answerType.clear();
}

void returnValueFromWorker(
    GObjectPtr<GDBusMethodInvocation> invocation, std::function<GVariant*()> makeValue) {
    returnValue(std::move(invocation), makeValue());
}

DBusObject::DBusObject(
    GObjectPtr<GDBusConnection> /*connection*/, std::string /*path*/, const char* /*introspection*/,
    DBusHandler& /*handler*/) {}
DBusObject::~DBusObject() = default;
void DBusObject::emitSignal(const char* /*name*/, GVariant* /*arguments*/) {}

} // namespace harbrook::gtk

namespace {

Menu anyMenu(fuzz::Choices& choices) {
    Menu menu;
    for (auto count = choices.below(6); count > 0; --count) {
        MenuItem item;
        item.title = std::string(1, static_cast<char>('a' + choices.below(4)));
        if (choices.below(2) == 0) item.action = "open:";
        if (choices.below(3) == 0) item.submenu.emplace().addItem(MenuItem::separatorItem());
        menu.addItem(item);
    }
    return menu;
}

void call(gtk::DBusMenu& menu, const Method& method, const std::uint8_t* data, std::size_t size) {
    // The bus hands on only what is laid out as it should be.
    const auto any = fuzz::variantOf(method.takes, data, size);
    const gtk::GVariantPtr arguments(g_variant_get_normal_form(any.get()));
    answers = 0;
    menu.handleMethod(method.name, arguments.get(), nullptr);
    fuzz::require(answers == 1 && (answerType.empty() || answerType == method.gives));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    fuzz::failAtComplaints();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    gtk::DBusMenu menu([](const MenuItem& item) { fuzz::require(item.isEnabled() && !item.action.empty()); });
    // A kind, a length, and so many bytes, over and over.
    constexpr std::size_t head = 2;
    while (size >= head) {
        const auto length = std::min<std::size_t>(data[1], size - head);
        const auto kind = data[0] % (methods.size() + 1);
        if (kind == methods.size()) {
            fuzz::Choices choices(data + head, length);
            menu.setMenu(anyMenu(choices), {});
        } else {
            call(menu, methods.at(kind), data + head, length);
        }
        fuzz::require(!menu.published().rows().empty());
        data += head + length;
        size -= head + length;
    }
    return 0;
}
