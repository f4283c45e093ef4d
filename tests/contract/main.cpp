#include <gtest/gtest.h>

#include <cstdlib>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    // Nothing of the user's session takes part.
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
    setenv("GSETTINGS_BACKEND", "memory", 1);
    setenv("GTK_A11Y", "none", 1);
    return RUN_ALL_TESTS();
}
