#include "platform/gtk/status/Images.h"

#include <string>
#include <string_view>

namespace harbrook::gtk {

namespace {

using TexturePtr = GObjectPtr<GdkTexture>;

TexturePtr textureFromFile(const std::filesystem::path& path) {
    return TexturePtr::adopt(gdk_texture_new_from_filename(path.c_str(), nullptr));
}

} // namespace

std::optional<Image> imageWithContentsOfURL(const std::filesystem::path& path) {
    const auto texture = textureFromFile(path);
    if (!texture) return std::nullopt;
    const Size size = {
        static_cast<double>(gdk_texture_get_width(texture.get())),
        static_cast<double>(gdk_texture_get_height(texture.get()))};
    return Image{size, false, path, {}};
}

TexturePtr loadTexture(const std::filesystem::path& path, int side) {
    auto texture = textureFromFile(path);
    constexpr std::string_view suffix = "@2x";
    auto name = path.stem().string();
    if (!texture || gdk_texture_get_width(texture.get()) >= side || !name.ends_with(suffix)) return texture;
    name.replace(name.size() - suffix.size(), suffix.size(), "@4x");
    auto sharper = textureFromFile(path.parent_path() / (name + path.extension().string()));
    return sharper ? sharper : texture;
}

} // namespace harbrook::gtk
