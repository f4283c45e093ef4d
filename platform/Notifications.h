#pragma once

#include "platform/Value.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace harbrook {

class View;
class Window;

enum class NotificationName {
    NSViewFrameDidChangeNotification,
    NSWindowDidResizeNotification,
    NSWindowDidEndLiveResizeNotification,
    NSWindowDidBecomeKeyNotification,
    NSWindowDidResignKeyNotification,
    NSWindowDidDeminiaturizeNotification,
    NSWindowDidChangeScreenNotification,
    NSWindowWillEnterFullScreenNotification,
    NSWindowDidExitFullScreenNotification,
};

/// Where an observer's block runs: at once, on the thread and inside the call that posted the notification;
/// or on the main operation queue (which also means at once when it is posted on the main thread).
enum class ObserverQueue { none, mainQueue };

/// Keeps an observer registered. Letting it go does not end the registration.
class ObserverToken {
public:
    virtual ~ObserverToken() = default;
};

/// Notifications inside the process. Main thread.
class NotificationCenter {
public:
    virtual ~NotificationCenter() = default;
    [[nodiscard]] virtual std::shared_ptr<ObserverToken> addObserverForName(
        NotificationName name, const std::shared_ptr<View>& object, ObserverQueue queue,
        std::function<void()> block) = 0;
    [[nodiscard]] virtual std::shared_ptr<ObserverToken> addObserverForName(
        NotificationName name, const std::shared_ptr<Window>& object, ObserverQueue queue,
        std::function<void()> block) = 0;
};

/// Notifications between the programs of a session.
class DistributedNotificationCenter {
public:
    using UserInfo = std::optional<Value::Dictionary>;

    virtual ~DistributedNotificationCenter() = default;
    /// Has `block` called on the main thread for every notification called `name`, whoever sends it, until
    /// the process ends.
    virtual void addObserverForName(const std::string& name, std::function<void(const UserInfo&)> block) = 0;
};

} // namespace harbrook
