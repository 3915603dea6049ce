// The sky that reflective materials mirror, looked up directly and through
// the table large layers use.
#include <gtest/gtest.h>

#include <array>

#include "engine/environment.h"

// The table must give the lookup's bytes for every direction: every packed
// y component (those beyond +-30000 too) and weights that round differently.
TEST(Environment, SkyTableGivesTheLookupsColours)
{
    FZEnvironment sky;
    ASSERT_TRUE(BuildSkyTable(sky));
    for (std::int32_t y = -32768; y <= 32767; ++y) {
        for (float weight : {1.0f, 0.8f, 0.3333f}) {
            FZRay ray;
            ray.direction.x = 1234;
            ray.direction.y = static_cast<std::int16_t>(y);
            ray.direction.z = 20000;
            ray.weight = weight;
            std::array<float, 3> table{};
            LookupSkyTable(sky, ray, table.data());
            std::array<float, 3> direct{};
            LookupEnvironment(sky, ray, direct.data());
            ASSERT_EQ(table, direct) << "y " << y << " weight " << weight;
        }
    }
}
