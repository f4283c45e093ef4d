#include "tests/gtk/support/PrivateDisplay.h"

#include "platform/gtk/foundation/ProcessInfo.h"
#include "platform/gtk/foundation/Task.h"

#include <gtk/gtk.h>

#include <cstdlib>
#include <stdexcept>

namespace harbrook::tests {

PrivateDisplay::PrivateDisplay() {
    const auto output = std::make_shared<gtk::Pipe>();
    server_ = std::make_shared<gtk::Task>(gtk::currentEnvironment());
    // The kernel ends it if this process dies before it can.
    server_->setExecutableURL("/usr/bin/setpriv");
    server_->setArguments(
        {"--pdeathsig", "TERM", "--", "Xvfb", "-displayfd", "1", "-screen", "0", "1600x1200x24", "-nolisten",
         "tcp", "-noreset"});
    server_->setStandardOutput(output);
    server_->setStandardError(gtk::openNullDevice());
    if (const auto error = server_->launchAndReturnError()) {
        throw std::runtime_error("no virtual display: " + error->localizedDescription);
    }
    // It tells the number that it found free, and a line end, once it can be used.
    std::string number;
    while (!number.ends_with('\n')) {
        const auto part = output->fileHandleForReading()->availableData();
        if (part.empty()) throw std::runtime_error("the virtual display did not start");
        number += part;
    }
    number.pop_back();
    unsetenv("WAYLAND_DISPLAY");
    setenv("GDK_BACKEND", "x11", 1);
    // What is drawn is not looked at here, and some drivers lose memory at the end of a process.
    setenv("GDK_DEBUG", "gl-disable", 1);
    setenv("DISPLAY", (":" + number).c_str(), 1);
    if (!gtk_init_check()) throw std::runtime_error("the toolkit does not start on the virtual display");
}

PrivateDisplay::~PrivateDisplay() {
    server_->terminate();
    server_->waitUntilExit();
}

} // namespace harbrook::tests
