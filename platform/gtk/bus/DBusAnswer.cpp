#include "platform/gtk/bus/DBusAnswer.h"

namespace harbrook::gtk {

namespace {

struct Job {
    GObjectPtr<GDBusMethodInvocation> invocation;
    std::function<GVariant*()> makeValue;
};

void runJob(GTask* /*task*/, gpointer /*source*/, gpointer data, GCancellable* /*cancellable*/) noexcept {
    auto* job = static_cast<Job*>(data);
    const GVariantPtr value(g_variant_ref_sink(job->makeValue()));
    // Laid out now, because sending it holds up whoever else wants to send.
    g_variant_get_data(value.get());
    returnValue(std::move(job->invocation), value.get());
}

void freeJob(gpointer data) noexcept {
    const std::unique_ptr<Job> job(static_cast<Job*>(data));
}

} // namespace

void returnValue(GObjectPtr<GDBusMethodInvocation> invocation, GVariant* value) {
    g_dbus_method_invocation_return_value(invocation.release(), value);
}

void returnInvalidArguments(GObjectPtr<GDBusMethodInvocation> invocation, const std::string& message) {
    g_dbus_method_invocation_return_error_literal(
        invocation.release(), G_DBUS_ERROR, G_DBUS_ERROR_INVALID_ARGS, message.c_str());
}

void returnValueFromWorker(
    GObjectPtr<GDBusMethodInvocation> invocation, std::function<GVariant*()> makeValue) {
    auto job = std::make_unique<Job>(Job{std::move(invocation), std::move(makeValue)});
    const auto task = GObjectPtr<GTask>::adopt(g_task_new(nullptr, nullptr, nullptr, nullptr));
    g_task_set_task_data(task.get(), job.release(), freeJob);
    g_task_run_in_thread(task.get(), runJob);
}

} // namespace harbrook::gtk
