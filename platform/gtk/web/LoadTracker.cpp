#include "platform/gtk/web/LoadTracker.h"

#include <utility>

namespace harbrook::gtk {

namespace {

bool isBlank(const std::string& address) {
    return address.empty() || address == "about:blank";
}

} // namespace

void LoadTracker::ownLoadRequested(std::string address) {
    own_ = Own::requested;
    ownAddress_ = std::move(address);
}

bool LoadTracker::isWarmUpDecision(const std::string& address) const {
    return warmingUp_ && isBlank(address);
}

void LoadTracker::decided(const std::string& address, bool isRedirect, bool allowed) {
    if (own_ == Own::requested && address == ownAddress_) {
        own_ = allowed ? Own::allowed : Own::none;
    } else if (own_ == Own::started && isRedirect && !allowed) {
        own_ = Own::none;
    }
}

void LoadTracker::started() {
    // Any other load that starts means that the shell's own is over.
    if (own_ == Own::allowed) {
        own_ = Own::started;
    } else if (own_ != Own::requested) {
        own_ = Own::none;
    }
}

bool LoadTracker::committedBlankInstead(const std::string& address) {
    if (own_ == Own::started) {
        warmingUp_ = false;
        if (isBlank(address) && !isBlank(ownAddress_)) {
            own_ = Own::none;
            return true;
        }
        own_ = Own::committed;
        hasPage_ = true;
    } else if (!warmingUp_) {
        hasPage_ = true;
    }
    return false;
}

bool LoadTracker::reportsFailure(const std::string& address, Failure failure) const {
    if (warmingUp_ && isBlank(address)) return false;
    const bool ownLoadIsNext = own_ == Own::requested || own_ == Own::allowed;
    return failure != Failure::cancelled || !ownLoadIsNext;
}

bool LoadTracker::reportsTermination() {
    const bool matters = hasPage_ || own_ != Own::none;
    warmingUp_ = false;
    own_ = Own::none;
    return matters;
}

} // namespace harbrook::gtk
