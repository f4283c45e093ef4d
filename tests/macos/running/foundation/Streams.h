#pragma once

#include "tests/macos/running/foundation/Foundation.h"

// Handles and pipes are real ones. A worker that waits for data lets the others run.

@interface StandInFileHandle : NSFileHandle {
@public
    int descriptor;
    harbrook::running::Kept<id> handler;
}
@end

namespace harbrook::running {

[[nodiscard]] NSFileHandle* handleOf(int descriptor);
[[nodiscard]] int descriptorOf(NSFileHandle* handle);
void closeHandle(NSFileHandle* handle);

} // namespace harbrook::running
