#include "tests/macos/running/foundation/Streams.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <utility>

using namespace harbrook::running;

// Children are real ones. The paths of programs are below the world's root.

@interface StandInTask : NSTask {
@public
    pid_t child;
    bool exited;
}
@end

namespace {

/// The end of a stream that the child takes, or -1 for the shell's own.
int childsEnd(id stream, const char* end) {
    if (!stream) return -1;
    if (!isKind(stream, "NSPipe")) return descriptorOf(stream);
    return descriptorOf(reinterpret_cast<NSFileHandle*>(property(stream, end)->word));
}

/// Once the child has its ends of the pipes, the shell keeps none of them.
void closeChildsEnd(id stream, const char* end) {
    if (stream && isKind(stream, "NSPipe"))
        closeHandle(reinterpret_cast<NSFileHandle*>(property(stream, end)->word));
}

id streamOf(NSTask* task, const char* name) {
    const auto* const found = property(task, name);
    return found ? reinterpret_cast<id>(found->word) : nil;
}

std::vector<std::string> arguments(NSTask* task) {
    std::vector<std::string> all{placeOf(task.executableURL)};
    for (NSString* argument in task.arguments)
        all.push_back(characters(argument));
    return all;
}

std::vector<std::string> environment(NSTask* task) {
    std::vector<std::string> all;
    NSDictionary* const given = task.environment;
    for (NSString* name in given)
        all.push_back(characters(name) + "=" + characters([given objectForKeyedSubscript:name]));
    if (given) return all;
    for (char** entry = environ; *entry; ++entry)
        all.emplace_back(*entry);
    return all;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> all;
    for (auto& each : texts)
        all.push_back(each.data());
    all.push_back(nullptr);
    return all;
}

bool hasExited(StandInTask* task) {
    if (!task->exited) task->exited = waitpid(task->child, nullptr, WNOHANG) == task->child;
    return task->exited;
}

} // namespace

@implementation NSTask

+ (instancetype)alloc {
    return make([StandInTask class]);
}

- (BOOL)launchAndReturnError:(NSError**)error {
    auto* const own = static_cast<StandInTask*>(self);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    const std::array streams = {
        std::pair{streamOf(self, "standardInput"), "fileHandleForReading"},
        std::pair{streamOf(self, "standardOutput"), "fileHandleForWriting"},
        std::pair{streamOf(self, "standardError"), "fileHandleForWriting"},
    };
    for (int i = 0; i < 3; ++i) {
        const int end = childsEnd(streams[i].first, streams[i].second);
        if (end >= 0) posix_spawn_file_actions_adddup2(&actions, end, i);
    }
    if (NSURL* const directory = self.currentDirectoryURL)
        posix_spawn_file_actions_addchdir_np(&actions, placeOf(directory).c_str());
    auto words = arguments(self);
    auto variables = environment(self);
    const int failure = posix_spawn(
        &own->child, words[0].c_str(), &actions, nullptr, pointers(words).data(), pointers(variables).data());
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) {
        own->child = 0;
        if (error) *error = harbrook::running::error("The file doesn’t exist.");
        return NO;
    }
    for (const auto& [stream, end] : streams)
        closeChildsEnd(stream, end);
    return YES;
}

- (void)terminate {
    auto* const own = static_cast<StandInTask*>(self);
    if (!own->child) world().fail("a task that was never launched is terminated");
    if (!hasExited(own)) kill(own->child, SIGTERM);
}

- (void)waitUntilExit {
    auto* const own = static_cast<StandInTask*>(self);
    if (!own->child) world().fail("a task that was never launched is waited for");
    if (!world().scheduler.isMainThread()) {
        world().waitForChild([own] { return hasExited(own); });
        return;
    }
    while (!hasExited(own)) {
        world().runWorkers();
        poll(nullptr, 0, 1);
    }
}

@end

@implementation StandInTask

/// A child that a test leaves is ended with it.
- (void)dealloc {
    if (!child || hasExited(self)) return;
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
}

@end
