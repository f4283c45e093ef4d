// draw_icons FOLDER
// Draws the pictures of the menu-bar icon by the shell's own recipe: at twice the size in points for the
// shell, and at four times for panels that show it larger.

#include "platform/gtk/status/Drawing.h"
#include "status/MenuBarIcon.h"

#include <filesystem>
#include <iostream>
#include <string>

namespace {

bool draw(const std::filesystem::path& folder, const std::string& name, bool idle) {
    using namespace harbrook;
    const auto image = Image::imageWithSize({menuBarIconSide, menuBarIconSide}, menuBarIconDrawing(idle));
    for (const int scale : {2, 4}) {
        const auto path = folder / (name + '@' + std::to_string(scale) + "x.png");
        const auto surface = gtk::renderImage(image, static_cast<int>(menuBarIconSide) * scale);
        if (cairo_surface_write_to_png(surface.get(), path.c_str()) != CAIRO_STATUS_SUCCESS) {
            std::cerr << "draw_icons: cannot write " << path << '\n';
            return false;
        }
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: draw_icons FOLDER\n";
        return 2;
    }
    return draw(argv[1], "menubarTemplate", false) && draw(argv[1], "menubarIdleTemplate", true) ? 0 : 1;
}
