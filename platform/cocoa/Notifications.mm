#include "platform/cocoa/Notifications.h"

#include "platform/cocoa/Conversions.h"
#include "platform/cocoa/View.h"
#include "platform/cocoa/Window.h"

namespace harbrook::cocoa {

namespace {

class Token final : public ObserverToken {
public:
    explicit Token(id token) : token_(token) {}

private:
    [[maybe_unused]] id token_;
};

NSNotificationName toNSNotificationName(NotificationName name) {
    switch (name) {
    case NotificationName::NSViewFrameDidChangeNotification:
        return NSViewFrameDidChangeNotification;
    case NotificationName::NSWindowDidResizeNotification:
        return NSWindowDidResizeNotification;
    case NotificationName::NSWindowDidEndLiveResizeNotification:
        return NSWindowDidEndLiveResizeNotification;
    case NotificationName::NSWindowDidBecomeKeyNotification:
        return NSWindowDidBecomeKeyNotification;
    case NotificationName::NSWindowDidResignKeyNotification:
        return NSWindowDidResignKeyNotification;
    case NotificationName::NSWindowDidDeminiaturizeNotification:
        return NSWindowDidDeminiaturizeNotification;
    case NotificationName::NSWindowDidChangeScreenNotification:
        return NSWindowDidChangeScreenNotification;
    case NotificationName::NSWindowWillEnterFullScreenNotification:
        return NSWindowWillEnterFullScreenNotification;
    case NotificationName::NSWindowDidExitFullScreenNotification:
        return NSWindowDidExitFullScreenNotification;
    }
}

std::shared_ptr<ObserverToken> addObserver(
    NotificationName name, id object, ObserverQueue queue, std::function<void()> block) {
    NSOperationQueue* const native = queue == ObserverQueue::mainQueue ? NSOperationQueue.mainQueue : nil;
    return std::make_shared<Token>([[NSNotificationCenter defaultCenter]
        addObserverForName:toNSNotificationName(name)
                    object:object
                     queue:native
                usingBlock:^(NSNotification*) {
                    block();
                }]);
}

} // namespace

std::shared_ptr<ObserverToken> NotificationCenter::addObserverForName(
    NotificationName name, const std::shared_ptr<harbrook::View>& object, ObserverQueue queue,
    std::function<void()> block) {
    return addObserver(name, View::nativeOf(*object), queue, std::move(block));
}

std::shared_ptr<ObserverToken> NotificationCenter::addObserverForName(
    NotificationName name, const std::shared_ptr<harbrook::Window>& object, ObserverQueue queue,
    std::function<void()> block) {
    return addObserver(name, Window::nativeOf(*object), queue, std::move(block));
}

void DistributedNotificationCenter::addObserverForName(
    const std::string& name, std::function<void(const UserInfo&)> block) {
    [[NSDistributedNotificationCenter defaultCenter]
        addObserverForName:toNSString(name)
                    object:nil
                     queue:NSOperationQueue.mainQueue
                usingBlock:^(NSNotification* notification) {
                    NSDictionary* const userInfo = notification.userInfo;
                    block(userInfo ? UserInfo(fromNSDictionary(userInfo)) : std::nullopt);
                }];
}

} // namespace harbrook::cocoa
