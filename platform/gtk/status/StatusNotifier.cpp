#include "platform/gtk/status/StatusNotifier.h"

#include "platform/gtk/bus/DBusAnswer.h"
#include "platform/gtk/bus/VariantText.h"
#include "platform/gtk/foundation/Bundle.h"
#include "platform/gtk/status/StatusNotifierInterface.h"

namespace harbrook::gtk {

namespace {

constexpr const char* itemPath = "/StatusNotifierItem";
constexpr const char* watcherName = "org.kde.StatusNotifierWatcher";
constexpr const char* watcherPath = "/StatusNotifierWatcher";

constexpr const char* symbolicIcon = "com.brackenforge.harbrook-symbolic";

/// The watcher of the Ayatana indicators also goes by this name. It hands icons on by name, and shows a
/// broken picture for one that has none (ayatana-indicator-application 22.2).
constexpr const char* ayatanaName = "org.ayatana.indicator.application";

/// A watcher may own its name a moment before it answers.
constexpr int maximumRetries = 5;
constexpr guint secondsBetweenRetries = 2;

GVariant* pixmapArray(const std::vector<Pixmap>& pixmaps) {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a(iiay)"));
    for (const auto& pixmap : pixmaps) {
        auto* bytes = g_variant_new_fixed_array(
            G_VARIANT_TYPE_BYTE, pixmap.argb.data(), pixmap.argb.size(), sizeof(std::uint8_t));
        g_variant_builder_add(&builder, "(ii@ay)", pixmap.side, pixmap.side, bytes);
    }
    return g_variant_builder_end(&builder);
}

GVariant* tooltip(const std::string& title, const std::string& text) {
    GVariant* parts[] = {g_variant_new_string(""), pixmapArray({}), textVariant(title), textVariant(text)};
    return g_variant_new_tuple(parts, G_N_ELEMENTS(parts));
}

} // namespace

/// Where the bus calls back. What may come after the item has gone holds it weakly.
struct StatusNotifier::Callbacks {
    static void appeared(
        GDBusConnection* /*connection*/, const char* /*name*/, const char* owner, gpointer self) noexcept {
        static_cast<StatusNotifier*>(self)->watcherAppeared(owner);
    }

    static void vanished(GDBusConnection* /*connection*/, const char* /*name*/, gpointer self) noexcept {
        static_cast<StatusNotifier*>(self)->watcherVanished();
    }

    struct Question {
        std::weak_ptr<StatusNotifier> asker;
        std::string watcher;
    };

    static void knowsAyatana(GObject* source, GAsyncResult* result, gpointer data) noexcept {
        const std::unique_ptr<Question> question(static_cast<Question*>(data));
        const GVariantPtr answer(g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, nullptr));
        const auto self = question->asker.lock();
        if (!self) return;
        const char* owner = "";
        if (answer) g_variant_get(answer.get(), "(&s)", &owner);
        self->wantsNames_ = question->watcher == owner;
        self->registerItem();
    }

    static void registered(GObject* source, GAsyncResult* result, gpointer data) noexcept {
        using Weak = std::weak_ptr<StatusNotifier>;
        const std::unique_ptr<Weak> weak(static_cast<Weak*>(data));
        const GVariantPtr answer(g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, nullptr));
        const auto self = weak->lock();
        if (self && !answer) self->registrationFailed();
    }

    static gboolean retry(gpointer data) noexcept {
        auto* self = static_cast<StatusNotifier*>(data);
        self->retry_ = 0;
        self->registerItem();
        return G_SOURCE_REMOVE;
    }
};

StatusNotifier::StatusNotifier(std::string title, Handlers handlers)
    : title_(std::move(title)), handlers_(std::move(handlers)) {}

StatusNotifier::~StatusNotifier() {
    if (watch_ != 0) g_bus_unwatch_name(watch_);
    if (retry_ != 0) g_source_remove(retry_);
}

void StatusNotifier::exportOn(GObjectPtr<GDBusConnection> connection, const std::string& menuPath) {
    menuPath_ = menuPath;
    object_ = std::make_unique<DBusObject>(connection, itemPath, statusNotifierInterface, *this);
    watch_ = g_bus_watch_name_on_connection(
        connection.get(), watcherName, G_BUS_NAME_WATCHER_FLAGS_NONE, Callbacks::appeared,
        Callbacks::vanished, this, nullptr);
}

void StatusNotifier::watcherAppeared(const std::string& owner) {
    hasWatcher_ = true;
    retries_ = 0;
    g_dbus_connection_call(
        object_->connection(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "GetNameOwner", g_variant_new("(s)", ayatanaName), G_VARIANT_TYPE("(s)"), G_DBUS_CALL_FLAGS_NONE, -1,
        nullptr, Callbacks::knowsAyatana,
        std::make_unique<Callbacks::Question>(Callbacks::Question{weak_from_this(), owner}).release());
}

void StatusNotifier::watcherVanished() {
    hasWatcher_ = false;
    if (retry_ != 0) g_source_remove(std::exchange(retry_, 0));
    handlers_.hostsLeft();
}

void StatusNotifier::registerItem() {
    // The unique name: a name of one's own has to be asked for, and sandboxes refuse it.
    auto* connection = object_->connection();
    g_dbus_connection_call(
        connection, watcherName, watcherPath, watcherName, "RegisterStatusNotifierItem",
        g_variant_new("(s)", g_dbus_connection_get_unique_name(connection)), nullptr,
        G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, Callbacks::registered,
        std::make_unique<std::weak_ptr<StatusNotifier>>(weak_from_this()).release());
}

void StatusNotifier::registrationFailed() {
    if (retry_ != 0 || retries_ == maximumRetries) return;
    ++retries_;
    retry_ = g_timeout_add_seconds(secondsBetweenRetries, Callbacks::retry, this);
}

void StatusNotifier::setContent(StatusContent content) {
    const auto before = std::exchange(content_, std::move(content));
    if (!object_) return;
    if (before.pixmaps != content_.pixmaps) object_->emitSignal("NewIcon");
    if (before.tooltip != content_.tooltip) object_->emitSignal("NewToolTip");
    if (wantsNames_ && before.label != content_.label) {
        GVariant* parts[] = {textVariant(content_.label), textVariant(content_.label)};
        object_->emitSignal("XAyatanaNewLabel", g_variant_new_tuple(parts, G_N_ELEMENTS(parts)));
    }
}

void StatusNotifier::handleMethod(
    std::string_view method, GVariant* arguments, GObjectPtr<GDBusMethodInvocation> invocation) {
    const char* token = nullptr;
    if (method == "ProvideXdgActivationToken") g_variant_get(arguments, "(&s)", &token);
    if (token) handlers_.activationTokenArrived(token);
    returnValue(std::move(invocation));
    if (method == "Activate") handlers_.activate();
}

GVariant* StatusNotifier::property(std::string_view name) {
    if (name == "Category") return g_variant_new_string("ApplicationStatus");
    if (name == "Status") return g_variant_new_string("Active");
    if (name == "Id" || name == "Title" || name == "IconAccessibleDesc") return textVariant(title_);
    if (name == "Menu") return g_variant_new_object_path(menuPath_.c_str());
    // Hosts take its absence for true, and would then never call Activate.
    if (name == "ItemIsMenu") return g_variant_new_boolean(FALSE);
    if (name == "WindowId") return g_variant_new_int32(0);
    if (name == "XAyatanaOrderingIndex") return g_variant_new_uint32(0);
    if (name == "IconPixmap") return pixmapArray(content_.pixmaps);
    if (name == "IconName" && wantsNames_) return g_variant_new_string(symbolicIcon);
    if (name == "IconThemePath" && wantsNames_) return textVariant(iconDirectory().native());
    if (name == "OverlayIconPixmap" || name == "AttentionIconPixmap") return pixmapArray({});
    if (name == "ToolTip") return tooltip(title_, content_.tooltip);
    if (name == "XAyatanaLabel" || name == "XAyatanaLabelGuide") {
        return textVariant(wantsNames_ ? content_.label : std::string());
    }
    // The names of icons: a panel shows the pixmaps only where there are none.
    return g_variant_new_string("");
}

} // namespace harbrook::gtk
