#include "tests/macos/running/appkit/Panels.h"

using namespace harbrook::running;

namespace {

struct Sheet {
    Kept<id> panel;
    Kept<id> handler;
};

std::vector<Sheet>& sheets() {
    static auto* const all = new std::vector<Sheet>;
    return *all;
}

void begin(id panel, NSWindow* window, id handler) {
    if (!window) world().fail("a sheet has no window");
    sheets().push_back({panel, handler});
}

} // namespace

@implementation NSAlert

- (void)beginSheetModalForWindow:(NSWindow*)window completionHandler:(void (^)(NSInteger))handler {
    begin(self, window, handler);
}

@end

@implementation NSSavePanel

- (void)beginSheetModalForWindow:(NSWindow*)window completionHandler:(void (^)(NSInteger))handler {
    begin(self, window, handler);
}

- (NSURL*)URL {
    const auto* const chosen = property(self, "chosen");
    return chosen ? reinterpret_cast<NSURL*>(chosen->word) : nil;
}

@end

namespace harbrook::running {

void endSheet(long response, const std::optional<std::string>& choice) {
    const AutoreleasePool pool;
    if (sheets().empty()) return world().fail("no sheet is open");
    const auto sheet = sheets().front();
    sheets().erase(sheets().begin());
    if (choice) give(sheet.panel, "chosen", [NSURL fileURLWithPath:text(*choice)]);
    ((void (^)(NSInteger))sheet.handler.get())(response);
}

int openSheets() {
    return static_cast<int>(sheets().size());
}

void forgetSheets() {
    sheets().clear();
}

} // namespace harbrook::running
