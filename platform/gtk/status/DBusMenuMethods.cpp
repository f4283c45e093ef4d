// The methods and properties of com.canonical.dbusmenu: arguments in, answers out.

#include "platform/gtk/bus/DBusAnswer.h"
#include "platform/gtk/status/DBusMenu.h"
#include "platform/gtk/status/DBusMenuInterface.h"

#include <array>

namespace harbrook::gtk {

namespace {

constexpr std::uint32_t protocolVersion = 3;

/// Larger menus, and more names than there are properties, take milliseconds, so the main thread does not put
/// these answers into words.
constexpr std::size_t rowsAnsweredAtOnce = 250;
constexpr std::size_t namesAnsweredAtOnce = 20;

/// What a host collects while its user moves over the menu is far less.
constexpr std::size_t largestEventGroup = 1000;

/// A group of which no row is known is an error by the protocol; of any other, the unknown ones are listed.
constexpr const char* noKnownRow = "The menu has none of these rows";

std::string unknownRow(std::int32_t id) {
    return "The menu has no row " + std::to_string(id);
}

PropertyNames propertyNames(GVariant* array) {
    PropertyNames names;
    const auto count = g_variant_n_children(array);
    for (gsize i = 0; i < count; ++i) {
        const GVariantPtr name(g_variant_get_child_value(array, i));
        names.emplace_back(g_variant_get_string(name.get(), nullptr));
    }
    return names;
}

std::vector<std::int32_t> ids(GVariant* array) {
    gsize count = 0;
    const auto* first =
        static_cast<const std::int32_t*>(g_variant_get_fixed_array(array, &count, sizeof(std::int32_t)));
    return first ? std::vector(first, first + count) : std::vector<std::int32_t>();
}

GVariant* idArray(const std::vector<std::int32_t>& ids) {
    return g_variant_new_fixed_array(G_VARIANT_TYPE_INT32, ids.data(), ids.size(), sizeof(std::int32_t));
}

} // namespace

void DBusMenu::exportOn(GObjectPtr<GDBusConnection> connection, const std::string& path) {
    object_ = std::make_unique<DBusObject>(std::move(connection), path, dbusMenuInterface, *this);
}

GVariant* DBusMenu::property(std::string_view name) {
    if (name == "Version") return g_variant_new_uint32(protocolVersion);
    if (name == "Status") return g_variant_new_string("normal");
    if (name == "TextDirection") return g_variant_new_string("ltr");
    return g_variant_new_strv(nullptr, 0);
}

void DBusMenu::handleMethod(std::string_view method, GVariant* arguments, Invocation invocation) {
    struct Entry {
        std::string_view name;
        void (DBusMenu::*method)(GVariant*, Invocation);
    };
    static constexpr std::array methods = {
        Entry{"GetLayout", &DBusMenu::getLayout},
        Entry{"GetGroupProperties", &DBusMenu::getGroupProperties},
        Entry{"GetProperty", &DBusMenu::getProperty},
        Entry{"Event", &DBusMenu::event},
        Entry{"EventGroup", &DBusMenu::eventGroup},
        Entry{"AboutToShow", &DBusMenu::aboutToShow},
        Entry{"AboutToShowGroup", &DBusMenu::aboutToShowGroup},
    };
    for (const auto& entry : methods) {
        if (entry.name == method) return (this->*entry.method)(arguments, std::move(invocation));
    }
}

void DBusMenu::getLayout(GVariant* arguments, Invocation invocation) {
    std::int32_t parent = 0;
    std::int32_t depth = 0;
    GVariant* names = nullptr;
    g_variant_get(arguments, "(ii@as)", &parent, &depth, &names);
    const GVariantPtr ownedNames(names);
    const auto index = published_->indexOf(parent);
    if (!index) return returnInvalidArguments(std::move(invocation), unknownRow(parent));
    const auto wanted = propertyNames(names);
    answer(
        std::move(invocation), wanted,
        [layout = published_, revision = revision_, index = *index, depth, wanted] {
            return g_variant_new("(u@(ia{sv}av))", revision, menuTree(*layout, index, depth, wanted));
        });
}

void DBusMenu::getGroupProperties(GVariant* arguments, Invocation invocation) {
    const GVariantPtr idVariant(g_variant_get_child_value(arguments, 0));
    const GVariantPtr nameVariant(g_variant_get_child_value(arguments, 1));
    const auto names = propertyNames(nameVariant.get());
    answer(std::move(invocation), names, [layout = published_, wanted = ids(idVariant.get()), names] {
        return g_variant_new("(@a(ia{sv}))", menuPropertiesOfRows(*layout, wanted, names));
    });
}

void DBusMenu::answer(
    Invocation invocation, const PropertyNames& names, std::function<GVariant*()> makeValue) const {
    if (published_->rows().size() > rowsAnsweredAtOnce || names.size() > namesAnsweredAtOnce) {
        returnValueFromWorker(std::move(invocation), std::move(makeValue));
    } else {
        returnValue(std::move(invocation), makeValue());
    }
}

void DBusMenu::getProperty(GVariant* arguments, Invocation invocation) {
    std::int32_t id = 0;
    const char* name = nullptr;
    g_variant_get(arguments, "(i&s)", &id, &name);
    const auto index = published_->indexOf(id);
    if (!index) return returnInvalidArguments(std::move(invocation), unknownRow(id));
    const GVariantPtr properties(g_variant_ref_sink(menuProperties(published_->rows()[*index].item, {name})));
    GVariantPtr value(g_variant_lookup_value(properties.get(), name, nullptr));
    if (!value) value.reset(menuPropertyDefault(name));
    if (!value) {
        return returnInvalidArguments(
            std::move(invocation), "Row " + std::to_string(id) + " has no property " + name);
    }
    returnValue(std::move(invocation), g_variant_new("(v)", value.get()));
}

// An event is answered before it is acted on: the action may be the last thing that the process does.

void DBusMenu::event(GVariant* arguments, Invocation invocation) {
    std::int32_t id = 0;
    const char* name = nullptr;
    g_variant_get(arguments, "(i&svu)", &id, &name, nullptr, nullptr);
    if (!published_->indexOf(id)) return returnInvalidArguments(std::move(invocation), unknownRow(id));
    const std::string event = name;
    returnValue(std::move(invocation));
    hostSent(id, event);
}

void DBusMenu::eventGroup(GVariant* arguments, Invocation invocation) {
    std::vector<std::pair<std::int32_t, std::string>> events;
    std::vector<std::int32_t> unknown;
    const GVariantPtr array(g_variant_get_child_value(arguments, 0));
    const auto count = g_variant_n_children(array.get());
    if (count > largestEventGroup) return returnInvalidArguments(std::move(invocation), "Too many events");
    for (gsize i = 0; i < count; ++i) {
        const GVariantPtr entry(g_variant_get_child_value(array.get(), i));
        std::int32_t id = 0;
        const char* name = nullptr;
        g_variant_get(entry.get(), "(i&svu)", &id, &name, nullptr, nullptr);
        if (published_->indexOf(id)) {
            events.emplace_back(id, name);
        } else {
            unknown.push_back(id);
        }
    }
    if (events.empty() && !unknown.empty()) return returnInvalidArguments(std::move(invocation), noKnownRow);
    returnValue(std::move(invocation), g_variant_new("(@ai)", idArray(unknown)));
    for (const auto& [id, event] : events)
        hostSent(id, event);
}

void DBusMenu::aboutToShow(GVariant* arguments, Invocation invocation) {
    std::int32_t id = 0;
    g_variant_get(arguments, "(i)", &id);
    if (!published_->indexOf(id)) return returnInvalidArguments(std::move(invocation), unknownRow(id));
    const auto needsUpdate = hostIsAboutToShow(id, Announcement::answer);
    returnValue(std::move(invocation), g_variant_new("(b)", needsUpdate ? TRUE : FALSE));
}

void DBusMenu::aboutToShowGroup(GVariant* arguments, Invocation invocation) {
    const GVariantPtr array(g_variant_get_child_value(arguments, 0));
    const auto asked = ids(array.get());
    std::vector<std::int32_t> updates;
    std::vector<std::int32_t> unknown;
    for (const auto id : asked) {
        if (!published_->indexOf(id)) {
            unknown.push_back(id);
        } else if (hostIsAboutToShow(id, Announcement::signal)) {
            // The hosts that ask for groups do not look at the answer, and follow a signal with the menu
            // open.
            updates.push_back(id);
        }
    }
    if (!asked.empty() && unknown.size() == asked.size()) {
        return returnInvalidArguments(std::move(invocation), noKnownRow);
    }
    returnValue(std::move(invocation), g_variant_new("(@ai@ai)", idArray(updates), idArray(unknown)));
}

} // namespace harbrook::gtk
