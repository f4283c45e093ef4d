#pragma once

#include "platform/WebView.h"
#include "platform/cocoa/Frameworks.h"

// What the web view tells and asks, handed on to the core's roles. Each holds its role weakly.

@interface HarbrookNavigationDelegate : NSObject <WKNavigationDelegate>
- (instancetype)initWithDelegate:(std::weak_ptr<harbrook::WebNavigationDelegate>)delegate;
@end

@interface HarbrookUIDelegate : NSObject <WKUIDelegate>
- (instancetype)initWithDelegate:(std::weak_ptr<harbrook::WebUIDelegate>)delegate;
@end

@interface HarbrookScriptMessageHandler : NSObject <WKScriptMessageHandler>
- (instancetype)initWithHandler:(std::weak_ptr<harbrook::ScriptMessageHandler>)handler;
@end
