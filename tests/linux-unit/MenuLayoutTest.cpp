#include "platform/gtk/MenuLayout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
