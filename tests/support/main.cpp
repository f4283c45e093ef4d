#include <gtest/gtest.h>

#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

/// Keeps everything of the user's session out: settings, files, programs, buses and displays.
class PrivateSession {
public:
    PrivateSession() {
        // A part of a test that runs in a process of its own is already inside the session of the test.
        constexpr auto mark = "HARBROOK_TEST_SESSION";
        if (getenv(mark)) return;
        setenv(mark, "1", 1);
        std::string name = (std::filesystem::temp_directory_path() / "harbrook-home-XXXXXX").string();
        if (mkdtemp(name.data())) home_ = name;
        setenv("HOME", home_.c_str(), 1);
        constexpr std::array directories{
            "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"};
        for (const char* directory : directories) {
            const auto path = home_ / directory;
            std::filesystem::create_directory(path);
            std::filesystem::permissions(path, std::filesystem::perms::owner_all);
            setenv(directory, path.c_str(), 1);
        }
        for (const char* variable : {"DBUS_SESSION_BUS_ADDRESS", "DISPLAY", "WAYLAND_DISPLAY"})
            unsetenv(variable);
        setenv("GSETTINGS_BACKEND", "memory", 1);
        setenv("GTK_A11Y", "none", 1);
    }
    ~PrivateSession() {
        if (home_.empty()) return;
        std::error_code ignored;
        std::filesystem::remove_all(home_, ignored);
    }
    PrivateSession(const PrivateSession&) = delete;
    PrivateSession& operator=(const PrivateSession&) = delete;

private:
    std::filesystem::path home_;
};

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    // Re-executed rather than forked: there may be threads of tests that ran before.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const PrivateSession session;
    return RUN_ALL_TESTS();
}
