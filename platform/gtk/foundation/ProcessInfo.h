#pragma once

#include "platform/Process.h"

namespace harbrook::gtk {

class ProcessInfo final : public harbrook::ProcessInfo {
public:
    /// Takes down the environment as it is, for children: without start-up ids. To be made before anything in
    /// the process changes it.
    ProcessInfo();

    Environment environment() override { return environment_; }
    int processIdentifier() override;
    std::filesystem::path loginShell() override;

private:
    Environment environment_;
};

/// The environment of the process as it is now. Nothing may change it during the call.
[[nodiscard]] Environment currentEnvironment();

} // namespace harbrook::gtk
