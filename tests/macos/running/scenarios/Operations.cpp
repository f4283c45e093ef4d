#include "tests/macos/running/scenarios/Operations.h"

#include "platform/recording/Format.h"

#include <algorithm>
#include <regex>
#include <set>

namespace harbrook::running {

namespace {

/// An operation of the double, and the messages it is on Cocoa. `$1` stands for what the first bracket found,
/// `$q1` for the same in quotes, and `*` for anything.
struct Row {
    const char* operation;
    std::vector<std::string> messages;
    /// The platform need not be told again what it knows.
    bool mayBeLeftOut = false;
};

const std::vector<Row>& rows() {
    static const std::vector<Row> all = {
        {"application setDelegate", {"NSApplication setDelegate: HarbrookApplicationDelegate"}},
        {"application run", {"NSApplication run"}},
        {"application (setWindowsMenu|setHelpMenu): .*", {"NSApplication $1: NSMenu"}},
        // Whoever opens an application decides that there.
        {"application setCreatesNewApplicationInstance: .*", {}},
        {"application setMainMenu: .*", {"NSApplication setMainMenu: NSMenu"}},
        {"application orderFrontStandardAboutPanel",
         {"NSApplication orderFrontStandardAboutPanelWithOptions: {NSAboutPanelOptionCredits: *}"}},
        {"application terminate", {"> HarbrookApplicationDelegate applicationWillTerminate:"}},
        {"application (.*)", {"NSApplication $1"}},
        {"responderChain (.*)", {"> responder chain $1"}},
        {"workspace (.*)", {"NSWorkspace $1"}},
        {"window init: (.*) style (.*) backing (.*) defer (.*)",
         {"NSWindow initWithContentRect: $1 styleMask: $2 backing: $3 defer: $4"}},
        {"window (setTitleVisibility|setTitlebarSeparatorStyle): (hidden|none)", {"NSWindow $1: 1"}},
        {"window setContentView: webView", {"NSWindow setContentView: WKWebView"}},
        {"window (makeKeyAndOrderFront|zoom)", {"NSWindow $1: nil"}},
        {"window performWindowDragWithEvent: .*", {"NSWindow performWindowDragWithEvent: NSEvent"}},
        {"window (.*)", {"NSWindow $1"}},
        {"closeButton (.*)", {"NSButton#1 $1"}},
        {"miniaturizeButton (.*)", {"NSButton#2 $1"}},
        {"zoomButton (.*)", {"NSButton#3 $1"}},
        {"titlebarContainer (.*)", {"NSView#2 $1"}},
        {"titlebar (.*)", {"NSView#3 $1"}},
        {"webView init: (.*)", {"WKWebView initWithFrame: $1 configuration: WKWebViewConfiguration"}},
        {"webView setNavigationDelegate", {"WKWebView setNavigationDelegate: HarbrookNavigationDelegate"}},
        {"webView setUIDelegate", {"WKWebView setUIDelegate: HarbrookUIDelegate"}},
        {"webView setValueForKey: (\\w+) (.*)", {"WKWebView setValue: $1 forKey: $2"}},
        {"webView loadRequest: (.*)", {"WKWebView loadRequest: GET $1"}},
        {"webView evaluateJavaScript: (.*)", {"WKWebView evaluateJavaScript: $q1 completionHandler: *"}},
        {"webView addSubview: label", {"WKWebView addSubview: NSTextField"}},
        {"webView (.*)", {"WKWebView $1"}},
        {"label init: (.*)", {"NSTextField labelWithString: $1"}},
        {"label setAlignment: center", {"NSTextField setAlignment: 1"}},
        {"label (.*)", {"NSTextField $1"}},
        {"layout activateConstraints: label.centerX = webView.centerX, label.centerY = webView.centerY, "
         "label.width <= (\\d+)",
         {"NSLayoutConstraint constraintWithItem: NSTextField attribute: 9 relatedBy: 0 toItem: WKWebView "
          "attribute: 9 "
          "multiplier: 1 constant: 0",
          "NSLayoutConstraint constraintWithItem: NSTextField attribute: 10 relatedBy: 0 toItem: WKWebView "
          "attribute: 10 "
          "multiplier: 1 constant: 0",
          "NSLayoutConstraint constraintWithItem: NSTextField attribute: 7 relatedBy: -1 toItem: nil "
          "attribute: 0 "
          "multiplier: 1 constant: $1",
          "NSLayoutConstraint activateConstraints: [NSLayoutConstraint, NSLayoutConstraint, "
          "NSLayoutConstraint]"}},
        {"statusBar (.*)", {"NSStatusBar $1"}},
        {"statusItem setMenu: .*", {"NSStatusItem setMenu: NSMenu"}, true},
        {"statusButton setImage: .*", {"NSStatusBarButton setImage: NSImage"}, true},
        {"statusButton setTitle: (.*)", {"NSStatusBarButton setTitle: $1"}, true},
        {"statusButton (.*)", {"NSStatusBarButton $1"}},
        {"alert beginSheetModalForWindow",
         {"NSAlert beginSheetModalForWindow: NSWindow completionHandler: ^"}},
        {"alert (.*)", {"NSAlert $1"}},
        {"openPanel init", {"NSOpenPanel openPanel"}},
        {"openPanel setDirectoryURL: (.*)", {"NSOpenPanel setDirectoryURL: file://$1"}},
        {"openPanel beginSheetModalForWindow",
         {"NSOpenPanel beginSheetModalForWindow: NSWindow completionHandler: ^"}},
        {"openPanel (.*)", {"NSOpenPanel $1"}},
        {"notifications addObserver: (\\w+) of (\\w+) on the main queue",
         {"NSNotificationCenter addObserverForName: \"$1\" object: $2 queue: NSOperationQueue usingBlock: "
          "^"}},
        {"notifications addObserver: (\\w+) of (\\w+)",
         {"NSNotificationCenter addObserverForName: \"$1\" object: $2 queue: nil usingBlock: ^"}},
        {"distributedNotifications addObserver: (.*)",
         {"NSDistributedNotificationCenter addObserverForName: \"$1\" object: nil queue: NSOperationQueue "
          "usingBlock: ^"}},
        {"session (.*)",
         {"NSURLSession dataTaskWithRequest: $1 completionHandler: ^", "NSURLSessionDataTask resume"}},
        {"timer schedule: (.*) repeats",
         {"NSTimer scheduledTimerWithTimeInterval: $1 repeats: true block: ^"}},
        {"timer (.*)", {"NSTimer $1"}},
        {"files fileExists: (.*)", {"NSFileManager fileExistsAtPath: \"$1\""}},
        {"files isExecutable: (.*)", {"NSFileManager fileExistsAtPath: \"$1\" isDirectory: *"}},
        {"files move: (.*) to (.*)", {"NSFileManager moveItemAtURL: file://$1 toURL: file://$2 error: *"}},
        {"files createDirectory: (.*)",
         {"NSFileManager createDirectoryAtURL: file://$1 withIntermediateDirectories: true attributes: nil "
          "error: *"}},
        {"files createFile: (.*)", {"NSFileManager createFileAtPath: \"$1\" contents: nil attributes: nil"}},
        {"files writeAtomically: (.*) to (.*)", {"NSData writeToURL: file://$2 atomically: true"}},
        {"files openForWriting: (.*)", {"NSFileHandle fileHandleForWritingToURL: file://$1 error: *"}},
        {"file seekToEndOfFile", {"NSFileHandle seekToEndReturningOffset: *"}},
        {"bundle URLForResource: (\\w+)/([^.]+)",
         {"NSBundle URLForResource: \"$2\" withExtension: nil subdirectory: \"$1\""}},
        {"bundle URLForResource: (\\w+)/([^.]+)\\.(\\w+)",
         {"NSBundle URLForResource: \"$2\" withExtension: \"$3\" subdirectory: \"$1\""}},
        {"bundle URLForResource: ([^.]+)\\.(\\w+)",
         {"NSBundle URLForResource: \"$1\" withExtension: \"$2\" subdirectory: nil"}},
        {"globalQueue async", {}},
        // Between the messages that the launch of a task is; launch.txt keeps where.
        {"pipe setReadabilityHandler", {}},
        {"task launch: (\\S+) .*",
         {"NSTask setExecutableURL: file://$1", "NSTask setArguments: *", "NSTask launchAndReturnError: *"}},
        {"task (.*)", {"NSTask $1"}},
    };
    return all;
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    for (auto place = text.find(from); place != std::string::npos; place = text.find(from, place + to.size()))
        text.replace(place, from.size(), to);
    return text;
}

struct Expected {
    std::string message;
    bool mayBeLeftOut;
    std::string operation;
};

/// What the double calls a view is, on Cocoa, a class and a number.
std::string onCocoa(std::string text) {
    for (const auto& [name, object] : std::vector<std::pair<std::string, std::string>>{
             {"object: window", "object: NSWindow"},
             {"object: closeButton", "object: NSButton#1"},
             {"object: miniaturizeButton", "object: NSButton#2"},
             {"object: zoomButton", "object: NSButton#3"},
             {"object: titlebarContainer", "object: NSView#2"},
             {"object: titlebar ", "object: NSView#3 "},
             {"/home/ada", "/Users/ada"},
             {"/opt/harbrook/resources", "/Applications/Harbrook.app/Contents/Resources"}}) {
        text = replaced(text, name, object);
    }
    return text;
}

std::vector<Expected> expectedMessages(const std::vector<std::string>& operations) {
    static std::vector<std::regex> patterns;
    if (patterns.empty()) {
        for (const auto& row : rows())
            patterns.emplace_back(row.operation);
    }
    std::vector<Expected> all;
    for (const auto& operation : operations) {
        std::smatch found;
        const auto pattern = std::ranges::find_if(
            patterns, [&](const std::regex& each) { return std::regex_match(operation, found, each); });
        if (pattern == patterns.end()) {
            all.push_back({"no row of the table is for this operation", false, operation});
            continue;
        }
        const auto& row = rows()[static_cast<std::size_t>(pattern - patterns.begin())];
        for (auto message : row.messages) {
            for (std::size_t i = 1; i < found.size(); ++i) {
                const auto number = std::to_string(i);
                message = replaced(message, "$q" + number, recording::inQuotes(found[i].str()));
                message = replaced(message, "$" + number, found[i].str());
            }
            all.push_back({onCocoa(message), row.mayBeLeftOut, operation});
        }
    }
    return all;
}

/// Receiver and first part of the selector.
std::string headOf(const std::string& message) {
    std::smatch found;
    static const std::regex pattern(R"(^(> )?(\w+)(#\d+)? (\w+:?).*)");
    return std::regex_match(message, found, pattern) ? found[2].str() + " " + found[4].str() : message;
}

const std::set<std::string>& comparedHeads() {
    static const std::set<std::string> heads = [] {
        std::set<std::string> all;
        for (const auto& row : rows()) {
            for (const auto& message : row.messages)
                all.insert(headOf(message));
        }
        return all;
    }();
    return heads;
}

/// Without the thread's indentation, and with numbers only where there are several of a kind.
std::string plain(const std::string& message) {
    static const std::regex indentation("^ +");
    static const std::regex number(R"(\b(?!NSButton#|NSView#)(\w+)#\d+)");
    return std::regex_replace(std::regex_replace(message, indentation, ""), number, "$1");
}

bool fits(const std::string& pattern, const std::string& message) {
    const auto star = pattern.find('*');
    if (star == std::string::npos) return pattern == message;
    return message.starts_with(pattern.substr(0, star)) && message.ends_with(pattern.substr(star + 1));
}

long compared = 0;

} // namespace

std::string difference(const std::vector<std::string>& operations, const std::vector<std::string>& messages) {
    const auto expected = expectedMessages(operations);
    std::set<std::string> heads = comparedHeads();
    for (const auto& each : expected)
        heads.insert(headOf(each.message));
    std::vector<std::string> said;
    for (const auto& message : messages) {
        if (heads.contains(headOf(plain(message)))) said.push_back(plain(message));
    }
    compared += static_cast<long>(operations.size());
    auto next = said.begin();
    for (const auto& each : expected) {
        if (next != said.end() && fits(each.message, *next)) {
            ++next;
        } else if (!each.mayBeLeftOut) {
            return "the double was asked: " + each.operation + "\nso Cocoa must be told: " + each.message +
                   "\nand was told: " + (next == said.end() ? "nothing more" : *next);
        }
    }
    return next == said.end() ? "" : "Cocoa is told, and the double was not asked: " + *next;
}

long comparedOperations() {
    return compared;
}

} // namespace harbrook::running
