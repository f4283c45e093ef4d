// Any output, in any pieces: the port is the one that all of it at once announces.

#include "server/AnnouncementParser.h"
#include "tests/fuzz/FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace harbrook;
    const auto text = fuzz::textOf(data, size);
    AnnouncementParser whole;
    const auto port = whole.append(text);

    // Characters are never cut in two by the reader.
    AnnouncementParser piecewise;
    std::optional<std::int64_t> last;
    for (std::size_t start = 0; start < size;) {
        auto end = start + 1 + data[start] % 7;
        while (end < size && (data[end] & 0xC0) == 0x80)
            ++end;
        last = piecewise.append(text.substr(start, end - start));
        start = end;
    }
    fuzz::require(last == port);
    fuzz::require(!port || text.find("HARBROOK_PORT ") != std::string_view::npos);
    return 0;
}
