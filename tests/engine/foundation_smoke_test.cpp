#include <gtest/gtest.h>

#include "engine/value_types.h"

TEST(Foundation, DefaultRecordIsWhite)
{
    FZAttributeEx m;
    EXPECT_EQ(m.color.r, 255);
    EXPECT_EQ(m.anisotropy.axis.z, 30000);
}
