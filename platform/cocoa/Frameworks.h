#pragma once

#import <AppKit/AppKit.h>
#import <WebKit/WebKit.h>

#if !__has_feature(objc_arc)
#error "These files are written for automatic reference counting."
#endif
