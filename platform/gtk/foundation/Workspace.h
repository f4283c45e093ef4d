#pragma once

#include "platform/Process.h"
#include "platform/Workspace.h"

namespace harbrook::gtk {

class Workspace final : public harbrook::Workspace {
public:
    /// Programs that are opened get `environment`, not what the shell and its toolkits have made of it since.
    explicit Workspace(Environment environment) : environment_(std::move(environment)) {}

    /// By the desktop's default handler for the scheme, or its portal inside a sandbox. What becomes of it is
    /// not known when the call returns; without a handler, nothing happens.
    bool openURL(const URL& url) override;

private:
    Environment environment_;
};

} // namespace harbrook::gtk
