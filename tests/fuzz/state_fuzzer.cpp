// Any bytes a server could answer: they give a snapshot or none, and every snapshot has a menu.

#include "status/StatusMenu.h"
#include "tests/fuzz/FuzzInput.h"

#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace harbrook;
    const auto text = fuzz::textOf(data, size);
    const auto state = decodeState(text);
    const auto menu = statusMenu(state);
    fuzz::require(menu.items.front().title == "Open Harbrook" && menu.items.back().title == "Quit Harbrook");
    fuzz::require(statusTitle(state).empty() == (!state || listedProjectCount(*state) == 0));
    // Blanks around a document do not matter, and anything else does.
    fuzz::require(decodeState(" " + std::string(text) + "\n") == state);
    if (state) fuzz::require(!decodeState(std::string(text) + "0"));
    return 0;
}
