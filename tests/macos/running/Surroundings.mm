#include "tests/macos/running/Surroundings.h"

#include "tests/macos/running/appkit/Panels.h"
#include "tests/macos/running/foundation/Foundation.h"
#include "tests/macos/running/foundation/Session.h"
#include "tests/macos/running/webkit/Page.h"

namespace harbrook::running {

void forgetSurroundings() {
    const AutoreleasePool pool;
    forgetObservers();
    forgetSheets();
    forgetExchanges();
    forgetPage();
    forgetClassProperties();
    objc_release(NSApp);
    NSApp = nil;
}

} // namespace harbrook::running
