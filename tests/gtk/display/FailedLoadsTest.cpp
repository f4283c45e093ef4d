#include "platform/gtk/foundation/FileDescriptor.h"
#include "tests/gtk/support/RealPlatform.h"

#include <gio/gio.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <stdexcept>
#include <string>

namespace harbrook::tests {

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool underAddressSanitizer = true;
#else
constexpr bool underAddressSanitizer = false;
#endif

/// A port that refuses connections and that nobody else gets: bound, and never listened on.
class RefusedPort {
public:
    RefusedPort() : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        auto* general = reinterpret_cast<sockaddr*>(&address);
        if (bind(socket_.number(), general, length) != 0 ||
            getsockname(socket_.number(), general, &length) != 0) {
            throw std::runtime_error("no port to refuse on");
        }
        port_ = ntohs(address.sin_port);
    }

    [[nodiscard]] URL address() const {
        return *URL::URLWithString("http://localhost:" + std::to_string(port_) + "/");
    }

private:
    gtk::FileDescriptor socket_;
    int port_ = 0;
};

/// Allows every load and counts those that failed.
class FailureCounter final : public WebNavigationDelegate {
public:
    void decidePolicyForNavigationAction(const NavigationAction&, const DecisionHandler& decide) override {
        decide(NavigationActionPolicy::allow);
    }
    void didFailProvisionalNavigation(const Error&) override { ++failures; }
    void didFailNavigation(const Error&) override { ++failures; }

    int failures = 0;
};

/// Timers and other sources that wait on the main loop. Ids are given in ascending order, so all that live
/// are below the next one.
int pendingSources() {
    const guint next = g_idle_add([](gpointer) -> gboolean { return G_SOURCE_REMOVE; }, nullptr);
    int count = 0;
    for (guint id = 1; id < next; ++id)
        count += g_main_context_find_source_by_id(nullptr, id) != nullptr;
    g_source_remove(next);
    return count;
}

int threads() {
    using std::filesystem::directory_iterator;
    return static_cast<int>(std::distance(directory_iterator("/proc/self/task"), directory_iterator()));
}

/// Open descriptors, without those of the system's own figures: some seconds after its start the engine opens
/// a few of these, once, to watch how much memory is left.
int descriptors() {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code ignored;
        const auto target = std::filesystem::read_symlink(entry, ignored).string();
        count += !target.starts_with("/proc/") && !target.starts_with("/sys/");
    }
    return count;
}

/// The memory that this process has allocated, in KiB. Pages of files are not in it: whether those are shared
/// depends on which other processes run.
long allocatedMemory() {
    std::ifstream file("/proc/self/smaps_rollup");
    for (std::string word; file >> word;) {
        if (word != "Anonymous:") continue;
        long size = 0;
        file >> size;
        return size;
    }
    return -1;
}

/// The engine's own failures, one after the other as the shell's retries cause them, without the delay.
class FailedLoads : public testing::Test {
protected:
    void SetUp() override {
        if (const auto reason = provideDisplay()) GTEST_SKIP() << *reason;
        view_ = gtkPlatform().makeWebView({{0, 0}, {800, 600}}, {});
        view_->setNavigationDelegate(counter_);
        window_ = gtkPlatform().makeWindow(
            {{0, 0}, {800, 600}}, NSWindowStyleMaskTitled, BackingStore::buffered, false);
        window_->setContentView(view_);
        window_->makeKeyAndOrderFront();
    }

    /// Whether each of so many loads failed, exactly once.
    [[nodiscard]] bool fail(int times) {
        for (int i = 0; i < times; ++i) {
            const int before = counter_->failures;
            view_->loadRequest(URLRequest(port_.address()));
            if (!runMainLoopUntil([&] { return counter_->failures > before; })) return false;
            if (counter_->failures != before + 1) return false;
        }
        return true;
    }

    RefusedPort port_;
    std::shared_ptr<FailureCounter> counter_ = std::make_shared<FailureCounter>();
    std::shared_ptr<WebView> view_;
    std::shared_ptr<Window> window_;
};

TEST_F(FailedLoads, two_hundred_in_a_row_leave_nothing_behind) {
    // What is allocated once, and kept, is no leak.
    ASSERT_TRUE(fail(50));
    const int sourcesBefore = pendingSources();
    const int descriptorsBefore = descriptors();
    const int threadsBefore = threads();
    const long memoryBefore = allocatedMemory();
    ASSERT_GT(memoryBefore, 0);

    ASSERT_TRUE(fail(200));
    EXPECT_LE(pendingSources(), sourcesBefore);
    EXPECT_LE(descriptors(), descriptorsBefore);
    EXPECT_LE(threads(), threadsBefore);
    // The address sanitizer keeps what was freed.
    constexpr long growth = underAddressSanitizer ? std::numeric_limits<long>::max() : 1024;
    EXPECT_LE(allocatedMemory() - memoryBefore, growth);
}

} // namespace

} // namespace harbrook::tests
