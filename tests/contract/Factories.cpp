#include "tests/contract/Desktop.h"
#include "tests/contract/RecordingDesktop.h"
#include "tests/contract/gtk/GtkDesktop.h"

namespace harbrook::contract {

std::vector<Factory> factories() {
    return {{"recording", makeRecordingDesktop}, {"gtk", makeGtkDesktop}};
}

} // namespace harbrook::contract
