#pragma once

#include "tests/macos/running/foundation/Foundation.h"

#include <vector>

@interface StandInMenu : NSMenu {
@public
    std::vector<harbrook::running::Kept<NSMenuItem*>> items;
}
@end

@interface StandInMenuItem : NSMenuItem {
@public
    bool isSeparator;
}
@end
