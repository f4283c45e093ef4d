#include "platform/cocoa/Process.h"

#include "platform/Descriptor.h"
#include "platform/cocoa/Conversions.h"

namespace harbrook::cocoa {

namespace {

NSPipe* nativeOf(harbrook::Pipe& pipe) {
    return dynamic_cast<Pipe&>(pipe).native();
}

} // namespace

Environment ProcessInfo::environment() {
    NSDictionary<NSString*, NSString*>* const variables = NSProcessInfo.processInfo.environment;
    Environment result;
    for (NSString* name in variables)
        result.emplace(fromNSString(name), fromNSString(variables[name]));
    return result;
}

int ProcessInfo::processIdentifier() {
    return NSProcessInfo.processInfo.processIdentifier;
}

std::string FileHandle::availableData() {
    // The handle's own `availableData` raises an exception when reading fails, and nobody would catch it.
    auto data = readAvailable(handle_.fileDescriptor);
    // At end of file the handler would be called again and again; this also lets go of what it holds.
    if (data.empty()) handle_.readabilityHandler = nil;
    return data;
}

std::string FileHandle::readDataToEndOfFile() {
    return fromNSData([handle_ readDataToEndOfFileAndReturnError:nil]);
}

void FileHandle::writeData(std::string_view data) {
    [handle_ writeData:toNSData(data) error:nil];
}

void FileHandle::seekToEndOfFile() {
    [handle_ seekToEndReturningOffset:nil error:nil];
}

void FileHandle::setReadabilityHandler(ReadabilityHandler handler) {
    // The handler holds this object, and with it the native handle, until end of file.
    const auto self = shared_from_this();
    handle_.readabilityHandler = ^(NSFileHandle*) {
        handler(*self);
    };
}

void Task::setExecutableURL(std::filesystem::path executable) {
    task_.executableURL = fileURL(executable);
}

void Task::setArguments(std::vector<std::string> arguments) {
    task_.arguments = toNSArray(arguments);
}

void Task::setCurrentDirectoryURL(std::filesystem::path directory) {
    task_.currentDirectoryURL = fileURL(directory);
}

void Task::setEnvironment(Environment environment) {
    NSMutableDictionary<NSString*, NSString*>* const variables = [NSMutableDictionary dictionary];
    for (const auto& [name, value] : environment)
        variables[toNSString(name)] = toNSString(value);
    task_.environment = variables;
}

void Task::setStandardInput(std::shared_ptr<harbrook::Pipe> pipe) {
    task_.standardInput = nativeOf(*pipe);
}

void Task::setStandardOutput(std::shared_ptr<harbrook::Pipe> pipe) {
    task_.standardOutput = nativeOf(*pipe);
}

void Task::setStandardError(std::shared_ptr<harbrook::Pipe> pipe) {
    task_.standardError = nativeOf(*pipe);
}

void Task::setStandardError(std::shared_ptr<harbrook::FileHandle> handle) {
    task_.standardError = dynamic_cast<FileHandle&>(*handle).native();
}

std::optional<Error> Task::launchAndReturnError() {
    NSError* error = nil;
    const BOOL launched = [task_ launchAndReturnError:&error];
    return optionalError(launched, error);
}

void Task::terminate() {
    [task_ terminate];
}

void Task::waitUntilExit() {
    [task_ waitUntilExit];
}

} // namespace harbrook::cocoa
