#pragma once

#include "platform/WebView.h"
#include "tests/macos/running/foundation/Foundation.h"

#include <functional>
#include <optional>
#include <string>

// What the page and the engine do.

namespace harbrook::running {

/// The value of a script, or none when it fails. At first every script fails.
void setScripts(std::function<std::optional<Value>(const std::string& script)> evaluate);
/// The page posts a message; a `body` of a class that cannot be handed over stands for none.
void postMessage(const std::string& channel, const std::optional<Value>& body);
/// The engine asks about a navigation.
NavigationActionPolicy navigate(const std::optional<std::string>& address);
/// The page asks for a new window. Whether there is one.
bool openWindow(const std::optional<std::string>& address);
void failProvisionally(
    const std::string& description, long code = 0, const std::string& domain = "NSURLErrorDomain");
void failLoading(const std::string& description);
void showAlert(const std::string& message, std::function<void()> answered);
void askConfirmation(const std::string& message, std::function<void(bool)> answered);
void forgetPage();

} // namespace harbrook::running
