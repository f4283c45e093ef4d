#include "platform/recording/Platform.h"
#include <gtest/gtest.h>
TEST(x,y){ harbrook::recording::Platform p; p.settle(); }
