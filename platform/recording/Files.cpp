#include "platform/recording/Files.h"

#include "platform/recording/Format.h"

#include <algorithm>

namespace harbrook::recording {

namespace {

bool isBelow(const std::filesystem::path& path, const std::filesystem::path& directory) {
    const auto [end, rest] = std::mismatch(directory.begin(), directory.end(), path.begin(), path.end());
    return end == directory.end();
}

} // namespace

class FileManager::WritingHandle final : public FileHandle {
public:
    WritingHandle(WorldPtr world, std::shared_ptr<Node> node)
        : world_(std::move(world)), node_(std::move(node)) {}

    std::string availableData() override { throw Refused("a handle for writing was read"); }
    std::string readDataToEndOfFile() override { throw Refused("a handle for writing was read"); }
    void setReadabilityHandler(ReadabilityHandler) override {
        throw Refused("a handle for writing was watched for reading");
    }
    void writeData(std::string_view data) override {
        auto& content = node_->content;
        if (content.size() < position_ + data.size()) content.resize(position_ + data.size());
        std::ranges::copy(data, content.begin() + static_cast<std::ptrdiff_t>(position_));
        position_ += data.size();
    }
    void seekToEndOfFile() override {
        world_->note("file seekToEndOfFile");
        position_ = node_->content.size();
    }

private:
    WorldPtr world_;
    std::shared_ptr<Node> node_;
    std::size_t position_ = 0;
};

bool FileManager::fileExistsAtPath(const std::filesystem::path& path) {
    world_->note("files fileExists: " + path.string());
    return has(path);
}

bool FileManager::isExecutableFileAtPath(const std::filesystem::path& path) {
    world_->note("files isExecutable: " + path.string());
    const auto found = nodes_.find(path);
    return found != nodes_.end() && !found->second->isDirectory && found->second->isExecutable;
}

std::optional<Error> FileManager::moveItemAtURL(
    const std::filesystem::path& source, const std::filesystem::path& destination) {
    world_->note("files move: " + source.string() + " to " + destination.string());
    if (!has(source)) return Error{"The file doesn’t exist."};
    if (has(destination)) return Error{"An item with the same name already exists."};
    if (!writable(source) || !canHold(destination)) return Error{"You don’t have permission."};
    decltype(nodes_) moved;
    std::erase_if(nodes_, [&](const auto& entry) {
        if (!isBelow(entry.first, source)) return false;
        const auto rest = entry.first.lexically_relative(source);
        moved.emplace(rest == "." ? destination : destination / rest, entry.second);
        return true;
    });
    nodes_.merge(moved);
    return std::nullopt;
}

std::optional<Error> FileManager::createDirectoryAtURL(const std::filesystem::path& directory) {
    world_->note("files createDirectory: " + directory.string());
    const auto found = nodes_.find(directory);
    if (found != nodes_.end()) {
        if (found->second->isDirectory) return std::nullopt;
        return Error{"A file with that name exists."};
    }
    if (!writable(directory)) return Error{"You don’t have permission."};
    if (isBelowFile(directory)) return Error{"A part of the path is not a folder."};
    addDirectory(directory);
    return std::nullopt;
}

bool FileManager::createFileAtPath(const std::filesystem::path& path) {
    world_->note("files createFile: " + path.string());
    if (!canHold(path) || isDirectory(path)) return false;
    nodes_[path] = std::make_shared<Node>();
    return true;
}

bool FileManager::writeAtomically(std::string_view text, const std::filesystem::path& path) {
    world_->note("files writeAtomically: " + inQuotes(text) + " to " + path.string());
    if (!canHold(path) || isDirectory(path)) return false;
    nodes_[path] = std::make_shared<Node>(Node{false, false, std::string(text)});
    return true;
}

std::shared_ptr<FileHandle> FileManager::openForWriting(const std::filesystem::path& path) {
    world_->note("files openForWriting: " + path.string());
    const auto found = nodes_.find(path);
    if (found == nodes_.end() || found->second->isDirectory || !writable(path)) return nullptr;
    return std::make_shared<WritingHandle>(world_, found->second);
}

void FileManager::addDirectory(const std::filesystem::path& path) {
    auto& node = nodes_[path];
    if (!node) node = std::make_shared<Node>();
    node->isDirectory = true;
    if (path.has_relative_path()) addDirectory(path.parent_path());
}

void FileManager::addFile(const std::filesystem::path& path, std::string content) {
    addDirectory(path.parent_path());
    nodes_[path] = std::make_shared<Node>(Node{false, false, std::move(content)});
}

void FileManager::addExecutable(const std::filesystem::path& path) {
    addFile(path);
    nodes_[path]->isExecutable = true;
}

std::optional<std::string> FileManager::contents(const std::filesystem::path& path) const {
    const auto found = nodes_.find(path);
    if (found == nodes_.end() || found->second->isDirectory) return std::nullopt;
    return found->second->content;
}

bool FileManager::isDirectory(const std::filesystem::path& path) const {
    const auto found = nodes_.find(path);
    return found != nodes_.end() && found->second->isDirectory;
}

bool FileManager::isBelowFile(const std::filesystem::path& path) const {
    return std::ranges::any_of(
        nodes_, [&](const auto& entry) { return !entry.second->isDirectory && isBelow(path, entry.first); });
}

bool FileManager::writable(const std::filesystem::path& path) const {
    return std::ranges::none_of(unwritable_, [&](const auto& top) { return isBelow(path, top); });
}

bool FileManager::canHold(const std::filesystem::path& path) const {
    const auto parent = nodes_.find(path.parent_path());
    return parent != nodes_.end() && parent->second->isDirectory && writable(path);
}

std::optional<std::filesystem::path> Bundle::URLForResource(
    std::string_view name, std::string_view extension, std::string_view subdirectory) {
    auto file = std::string(name);
    if (!extension.empty()) file += "." + std::string(extension);
    const auto relative = std::filesystem::path(subdirectory) / file;
    world_->note("bundle URLForResource: " + relative.string());
    const auto path = root / relative;
    return files_->has(path) ? std::optional(path) : std::nullopt;
}

} // namespace harbrook::recording
