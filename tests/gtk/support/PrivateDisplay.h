#pragma once

#include "platform/Process.h"

namespace harbrook::tests {

/// A virtual display of this process's own, with the toolkit on it. It goes with the object or, should that
/// never be destroyed, with the process.
class PrivateDisplay {
public:
    PrivateDisplay();
    ~PrivateDisplay();
    PrivateDisplay(const PrivateDisplay&) = delete;
    PrivateDisplay& operator=(const PrivateDisplay&) = delete;

private:
    std::shared_ptr<Task> server_;
};

} // namespace harbrook::tests
