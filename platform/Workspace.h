#pragma once

#include "platform/URL.h"

namespace harbrook {

/// The desktop around the application. Main thread.
class Workspace {
public:
    virtual ~Workspace() = default;
    /// Hands `url` to the program that the user has chosen for it; returns at once. Whether one could be
    /// asked.
    virtual bool openURL(const URL& url) = 0;
};

} // namespace harbrook
