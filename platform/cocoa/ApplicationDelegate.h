#pragma once

#include "platform/Application.h"
#include "platform/cocoa/Frameworks.h"

/// The application's delegate, and as such the last stop of the responder chain. It holds the core's delegate
/// weakly and answers to the actions that the core's delegate has a method for.
@interface HarbrookApplicationDelegate : NSObject <NSApplicationDelegate>
- (instancetype)initWithDelegate:(std::weak_ptr<harbrook::ApplicationDelegate>)delegate;
@end
