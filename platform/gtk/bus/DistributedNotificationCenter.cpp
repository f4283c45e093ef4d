#include "platform/gtk/bus/DistributedNotificationCenter.h"

#include "platform/gtk/bus/SessionConnection.h"
#include "platform/gtk/bus/VariantValue.h"

namespace harbrook::gtk {

namespace {

using Block = std::function<void(const DistributedNotificationCenter::UserInfo&)>;

void onSignal(
    GDBusConnection* /*connection*/, const char* /*sender*/, const char* /*path*/, const char* /*interface*/,
    const char* /*signal*/, GVariant* arguments, gpointer data) noexcept {
    // The block may end the observation that it is called by.
    const auto block = *static_cast<std::shared_ptr<Block>*>(data);
    (*block)(userInfoFromArguments(arguments));
}

void freeBlock(gpointer data) noexcept {
    const std::unique_ptr<std::shared_ptr<Block>> block(static_cast<std::shared_ptr<Block>*>(data));
}

} // namespace

struct DistributedNotificationCenter::Subscriptions {
    GObjectPtr<GDBusConnection> connection;
    std::vector<guint> ids;

    ~Subscriptions() {
        for (const auto id : ids)
            g_dbus_connection_signal_unsubscribe(connection.get(), id);
    }

    void add(const std::string& name, const std::shared_ptr<Block>& block) {
        const auto dot = name.rfind('.');
        if (dot == std::string::npos) return;
        const auto interface = name.substr(0, dot);
        const auto member = name.substr(dot + 1);
        ids.push_back(g_dbus_connection_signal_subscribe(
            connection.get(), nullptr, interface.c_str(), member.c_str(), nullptr, nullptr,
            G_DBUS_SIGNAL_FLAGS_NONE, onSignal, std::make_unique<std::shared_ptr<Block>>(block).release(),
            freeBlock));
    }
};

DistributedNotificationCenter::DistributedNotificationCenter()
    : subscriptions_(std::make_shared<Subscriptions>()) {}

DistributedNotificationCenter::~DistributedNotificationCenter() = default;

void DistributedNotificationCenter::addObserverForName(
    const std::string& name, std::function<void(const UserInfo&)> block) {
    withSessionBus([weak = std::weak_ptr(subscriptions_), name,
                    shared = std::make_shared<Block>(std::move(block))](auto connection) {
        const auto subscriptions = weak.lock();
        if (!subscriptions) return;
        subscriptions->connection = std::move(connection);
        subscriptions->add(name, shared);
    });
}

DistributedNotificationCenter::UserInfo userInfoFromArguments(GVariant* arguments) {
    if (g_variant_n_children(arguments) != 1) return std::nullopt;
    const GVariantPtr argument(g_variant_get_child_value(arguments, 0));
    const auto value = valueFromVariant(argument.get());
    const auto* dictionary = value.as<Value::Dictionary>();
    return dictionary ? std::optional(*dictionary) : std::nullopt;
}

} // namespace harbrook::gtk
