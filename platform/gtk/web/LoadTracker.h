#pragma once

#include <string>

namespace harbrook::gtk {

/// Tells, from the engine's events about loads, which of them the shell should hear of as failed. It knows
/// three things that the engine does not tell: which document is the blank one that only warms the engine up,
/// which loads are the shell's own, and whether a page of the shell's was ever shown.
///
/// Whatever the engine reports as a failed load is one, as it is on macOS (a refused redirect, a download, a
/// page that stops its load, a link followed while another is loading), but for two things that do not exist
/// there:
/// - nothing that happens to the warm-up is reported;
/// - a load that gives way to a newer one of the shell's own has not failed: the newer one reports its own
///   outcome. Were both reported, then with a server slower than the retry delay every retry would cut off
///   the one before, and so cause another, without end.
class LoadTracker {
public:
    enum class Failure { cancelled, other };

    /// The blank document is being loaded.
    void warmUpBegan() { warmingUp_ = true; }
    /// The shell asks for `address`, in the engine's spelling.
    void ownLoadRequested(std::string address);

    /// A navigation to `address` is to be decided. Whether it is the warm-up's, which nobody else may see.
    [[nodiscard]] bool isWarmUpDecision(const std::string& address) const;
    /// It was decided, by the shell for anything but the warm-up. `isRedirect`: as a further hop of a load.
    void decided(const std::string& address, bool isRedirect, bool allowed);
    void started();
    /// A document from `address` begins to be shown. Whether that amounts to a failure: the engine puts a
    /// blank document in the place of an address whose port it does not allow.
    [[nodiscard]] bool committedBlankInstead(const std::string& address);
    /// Whether a load of `address` that failed is to be reported.
    [[nodiscard]] bool reportsFailure(const std::string& address, Failure failure) const;
    /// Whether the end of the page's process is to be reported.
    [[nodiscard]] bool reportsTermination();

    /// Whether a page that the shell asked for has ever been shown.
    [[nodiscard]] bool hasPage() const { return hasPage_; }
    /// Whether a load of the shell's own has been asked for or begun, and has shown nothing yet.
    [[nodiscard]] bool awaitsOwnLoad() const { return own_ != Own::none && own_ != Own::committed; }
    /// Whether `address` is what the shell itself asked for, and has shown nothing yet.
    [[nodiscard]] bool isOwnUnshown(const std::string& address) const {
        return awaitsOwnLoad() && address == ownAddress_;
    }

private:
    enum class Own { none, requested, allowed, started, committed };

    bool warmingUp_ = false;
    bool hasPage_ = false;
    Own own_ = Own::none;
    std::string ownAddress_;
};

} // namespace harbrook::gtk
