// Values no arithmetic should meet, which hosts and files hand in all the
// same.
#ifndef TAMERISK_TESTS_WILD_VALUES_H
#define TAMERISK_TESTS_WILD_VALUES_H

#include <limits>

inline constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
inline constexpr float kInf = std::numeric_limits<float>::infinity();

#endif
