#include "platform/gtk/status/Images.h"

#include <map>
#include <string>
#include <string_view>

namespace harbrook::gtk {

namespace {

using TexturePtr = GObjectPtr<GdkTexture>;

TexturePtr textureFromFile(const std::filesystem::path& path) {
    return TexturePtr::adopt(gdk_texture_new_from_filename(path.c_str(), nullptr));
}

std::optional<Image> decodedImage(const std::filesystem::path& path) {
    const auto texture = textureFromFile(path);
    if (!texture) return std::nullopt;
    const Size size = {
        static_cast<double>(gdk_texture_get_width(texture.get())),
        static_cast<double>(gdk_texture_get_height(texture.get()))};
    return Image{size, false, path, {}};
}

} // namespace

std::optional<Image> imageWithContentsOfURL(const std::filesystem::path& path) {
    struct Known {
        std::filesystem::file_time_type written;
        std::optional<Image> image;
    };
    // Each poll asks for one of the same few pictures. It is decoded again only when its file has changed.
    static std::map<std::filesystem::path, Known> images;
    std::error_code failure;
    const auto written = std::filesystem::last_write_time(path, failure);
    if (failure) return std::nullopt;
    const auto known = images.find(path);
    if (known != images.end() && known->second.written == written) return known->second.image;
    return images.insert_or_assign(path, Known{written, decodedImage(path)}).first->second.image;
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
