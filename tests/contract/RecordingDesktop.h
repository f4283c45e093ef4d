#pragma once

#include "tests/contract/Desktop.h"

namespace harbrook::contract {

/// The double that the unit tests run on, in its own virtual time.
[[nodiscard]] std::unique_ptr<Desktop> makeRecordingDesktop();

} // namespace harbrook::contract
