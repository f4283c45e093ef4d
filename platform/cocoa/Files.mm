#include "platform/cocoa/Files.h"

#include "platform/cocoa/Conversions.h"

namespace harbrook::cocoa {

namespace {

NSFileManager* manager() {
    return NSFileManager.defaultManager;
}

NSString* _Nullable noneIfEmpty(std::string_view text) {
    return text.empty() ? nil : toNSString(text);
}

} // namespace

std::filesystem::path FileManager::homeDirectoryForCurrentUser() {
    return *pathOf(manager().homeDirectoryForCurrentUser);
}

std::filesystem::path FileManager::currentDirectoryPath() {
    return fromNSString(manager().currentDirectoryPath);
}

bool FileManager::fileExistsAtPath(const std::filesystem::path& path) {
    return [manager() fileExistsAtPath:toNSString(path.native())];
}

bool FileManager::isExecutableFileAtPath(const std::filesystem::path& path) {
    // A directory may be "executable" too.
    BOOL isDirectory = NO;
    NSString* const native = toNSString(path.native());
    return [manager() fileExistsAtPath:native isDirectory:&isDirectory] && !isDirectory &&
           [manager() isExecutableFileAtPath:native];
}

std::optional<Error> FileManager::moveItemAtURL(
    const std::filesystem::path& source, const std::filesystem::path& destination) {
    NSError* error = nil;
    const BOOL moved = [manager() moveItemAtURL:fileURL(source) toURL:fileURL(destination) error:&error];
    return optionalError(moved, error);
}

std::optional<Error> FileManager::createDirectoryAtURL(const std::filesystem::path& directory) {
    NSError* error = nil;
    const BOOL created = [manager() createDirectoryAtURL:fileURL(directory)
                             withIntermediateDirectories:YES
                                              attributes:nil
                                                   error:&error];
    return optionalError(created, error);
}

bool FileManager::createFileAtPath(const std::filesystem::path& path) {
    return [manager() createFileAtPath:toNSString(path.native()) contents:nil attributes:nil];
}

bool FileManager::writeAtomically(std::string_view text, const std::filesystem::path& path) {
    return [toNSData(text) writeToURL:fileURL(path) atomically:YES];
}

std::optional<std::filesystem::path> Bundle::URLForResource(
    std::string_view name, std::string_view extension, std::string_view subdirectory) {
    return pathOf([NSBundle.mainBundle URLForResource:toNSString(name)
                                        withExtension:noneIfEmpty(extension)
                                         subdirectory:noneIfEmpty(subdirectory)]);
}

} // namespace harbrook::cocoa
