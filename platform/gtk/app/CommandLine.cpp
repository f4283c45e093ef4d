#include "platform/gtk/app/CommandLine.h"

#include "platform/gtk/foundation/GObjectPtr.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace harbrook::gtk {

namespace {

constexpr int wrongUsage = 2;

using OptionContext = std::unique_ptr<GOptionContext, FreeWith<g_option_context_free>>;
using StringArray = std::unique_ptr<char*, FreeWith<g_strfreev>>;

[[noreturn]] void refuse(const char* reason) {
    g_printerr("harbrook: %s\nTry `harbrook --help'.\n", reason);
    std::exit(wrongUsage);
}

} // namespace

Start answerCommandLine(int argc, char** argv) {
    gboolean version = FALSE;
    gboolean newInstance = FALSE;
    gboolean service = FALSE;
    const std::array entries{
        GOptionEntry{
            "version", 0, G_OPTION_FLAG_NONE, G_OPTION_ARG_NONE, &version, "Show the version and exit",
            nullptr},
        GOptionEntry{
            "new-instance", 0, G_OPTION_FLAG_NONE, G_OPTION_ARG_NONE, &newInstance,
            "Run beside what is running, with a server of its own", nullptr},
        // What the service file says, which the session bus starts the program by.
        GOptionEntry{
            "gapplication-service", 0, G_OPTION_FLAG_HIDDEN, G_OPTION_ARG_NONE, &service, nullptr, nullptr},
        GOptionEntry{},
    };
    const OptionContext context(g_option_context_new("- desktop shell of the local developer dashboard"));
    g_option_context_add_main_entries(context.get(), entries.data(), nullptr);

    // The parser takes what it knows out of the list, which others may want to read.
    auto words = std::make_unique<char*[]>(static_cast<std::size_t>(argc) + 1);
    std::copy_n(argv, argc, words.get());
    StringArray remaining(g_strdupv(words.get()));
    char** list = remaining.release();
    GError* error = nullptr;
    g_option_context_parse_strv(context.get(), &list, &error);
    remaining.reset(list);
    const GErrorPtr failure(error);

    if (failure) refuse(failure->message);
    if (version) {
        g_print("Harbrook %s\n", HARBROOK_VERSION);
        std::exit(EXIT_SUCCESS);
    }
    if (g_strv_length(list) > 1) refuse("it takes no arguments");
    return {service ? StartedBy::bus : StartedBy::user, newInstance == TRUE};
}

} // namespace harbrook::gtk
