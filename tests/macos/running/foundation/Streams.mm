#include "tests/macos/running/foundation/Streams.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>

using namespace harbrook::running;

namespace {

bool isReadable(int descriptor) {
    pollfd entry{descriptor, POLLIN, 0};
    return poll(&entry, 1, 0) > 0;
}

/// What there is to read, at most one piece; empty at end of file. Lets others run until there is something.
std::string readPiece(int descriptor) {
    if (!world().scheduler.isMainThread())
        world().waitForChild([descriptor] { return isReadable(descriptor); });
    std::array<char, 65536> buffer{};
    const auto count = read(descriptor, buffer.data(), buffer.size());
    return count > 0 ? std::string(buffer.data(), static_cast<std::size_t>(count)) : std::string();
}

} // namespace

@implementation NSFileHandle

+ (NSFileHandle*)fileHandleWithNullDevice {
    return handleOf(open("/dev/null", O_RDWR | O_CLOEXEC));
}

+ (NSFileHandle*)fileHandleForWritingToURL:(NSURL*)url error:(NSError**)error {
    const int descriptor = open(placeOf(url).c_str(), O_WRONLY | O_CLOEXEC);
    return descriptor < 0 ? nil : handleOf(descriptor);
}

- (int)fileDescriptor {
    return descriptorOf(self);
}

- (NSData*)availableData {
    return dataOf(readPiece(descriptorOf(self)));
}

- (NSData*)readDataToEndOfFileAndReturnError:(NSError**)error {
    std::string all;
    for (auto piece = readPiece(descriptorOf(self)); !piece.empty(); piece = readPiece(descriptorOf(self)))
        all += piece;
    return dataOf(all);
}

- (BOOL)writeData:(NSData*)given error:(NSError**)error {
    const auto all = bytes(given);
    return write(descriptorOf(self), all.data(), all.size()) == static_cast<ssize_t>(all.size());
}

- (BOOL)seekToEndReturningOffset:(unsigned long long*)offset error:(NSError**)error {
    return lseek(descriptorOf(self), 0, SEEK_END) >= 0;
}

- (void)setReadabilityHandler:(void (^)(NSFileHandle*))handler {
    auto* const own = static_cast<StandInFileHandle*>(self);
    own->handler = static_cast<id>(handler);
    if (!handler) return world().stopWatching(own->descriptor);
    world().watch(own->descriptor, [own] {
        // A handler may take itself away.
        const Kept<id> handler = own->handler;
        const Kept<NSFileHandle*> handle = own;
        if (handler.get()) ((void (^)(NSFileHandle*))handler.get())(own);
    });
}

@end

@implementation StandInFileHandle

- (void)dealloc {
    if (World::isThere()) world().stopWatching(descriptor);
    closeHandle(self);
}

@end

@implementation NSPipe

+ (NSPipe*)pipe {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) return nil;
    NSPipe* const made = objc_autorelease([NSPipe alloc]);
    give(made, "fileHandleForReading", handleOf(ends[0]));
    give(made, "fileHandleForWriting", handleOf(ends[1]));
    return made;
}

@end

namespace harbrook::running {

NSFileHandle* handleOf(int descriptor) {
    StandInFileHandle* const made = [StandInFileHandle alloc];
    made->descriptor = descriptor;
    return objc_autorelease(made);
}

int descriptorOf(NSFileHandle* handle) {
    return static_cast<StandInFileHandle*>(handle)->descriptor;
}

void closeHandle(NSFileHandle* handle) {
    auto* const own = static_cast<StandInFileHandle*>(handle);
    if (own->descriptor >= 0) close(own->descriptor);
    own->descriptor = -1;
}

} // namespace harbrook::running
