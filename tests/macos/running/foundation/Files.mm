#include "tests/macos/running/foundation/Foundation.h"

#include <fcntl.h>
#include <unistd.h>

#include <fstream>

using namespace harbrook::running;

// The file system is the machine's own, below the world's root.

namespace {

BOOL report(const std::error_code& failure, NSError** error) {
    if (failure && error) *error = harbrook::running::error(failure.message());
    return !failure;
}

} // namespace

@implementation NSFileManager

- (NSURL*)homeDirectoryForCurrentUser {
    return [NSURL fileURLWithPath:text(world().environment["HOME"])];
}

- (NSString*)currentDirectoryPath {
    return text(std::filesystem::current_path().native());
}

- (BOOL)fileExistsAtPath:(NSString*)path {
    return std::filesystem::exists(placeOf(path));
}

- (BOOL)fileExistsAtPath:(NSString*)path isDirectory:(BOOL*)isDirectory {
    *isDirectory = std::filesystem::is_directory(placeOf(path));
    return std::filesystem::exists(placeOf(path));
}

- (BOOL)isExecutableFileAtPath:(NSString*)path {
    return access(placeOf(path).c_str(), X_OK) == 0;
}

- (BOOL)moveItemAtURL:(NSURL*)source toURL:(NSURL*)destination error:(NSError**)error {
    std::error_code failure;
    if (std::filesystem::exists(placeOf(destination))) {
        failure = std::make_error_code(std::errc::file_exists);
    } else {
        std::filesystem::rename(placeOf(source), placeOf(destination), failure);
    }
    return report(failure, error);
}

- (BOOL)createDirectoryAtURL:(NSURL*)url
    withIntermediateDirectories:(BOOL)intermediate
                     attributes:(NSDictionary*)attributes
                          error:(NSError**)error {
    std::error_code failure;
    std::filesystem::create_directories(placeOf(url), failure);
    return report(failure, error);
}

- (BOOL)createFileAtPath:(NSString*)path contents:(NSData*)contents attributes:(NSDictionary*)attributes {
    return writeFile(placeOf(path), bytes(contents));
}

@end

@implementation NSBundle

- (NSURL*)URLForResource:(NSString*)name
           withExtension:(NSString*)extension
            subdirectory:(NSString*)subdirectory {
    std::filesystem::path path = "/Applications/Harbrook.app/Contents/Resources";
    if (subdirectory) path /= characters(subdirectory);
    path /= characters(name) + (extension ? "." + characters(extension) : "");
    return std::filesystem::exists(world().placeOf(path)) ? [NSURL fileURLWithPath:text(path.native())] : nil;
}

@end

@implementation NSProcessInfo

- (NSDictionary*)environment {
    NSMutableDictionary* const variables = [NSMutableDictionary dictionary];
    for (const auto& [name, value] : world().environment)
        [variables setObject:text(value) forKeyedSubscript:text(name)];
    return variables;
}

- (id)beginActivityWithOptions:(NSActivityOptions)options reason:(NSString*)reason {
    return objc_autorelease([[NSObject alloc] init]);
}

- (int)processIdentifier {
    return 4242;
}

@end

namespace harbrook::running {

bool writeFile(const std::filesystem::path& place, std::string_view content) {
    if (std::filesystem::is_directory(place)) return false;
    const auto part = place.native() + ".part";
    std::ofstream file(part, std::ios::binary);
    file << content;
    file.close();
    std::error_code failure;
    if (file) std::filesystem::rename(part, place, failure);
    return file && !failure;
}

} // namespace harbrook::running
