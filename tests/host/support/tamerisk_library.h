// libtamerisk.so loaded the way a host loads it: dlopen, then the nine
// functions looked up by name. Nothing of the library is linked in.
#ifndef TAMERISK_TESTS_HOST_TAMERISK_LIBRARY_H
#define TAMERISK_TESTS_HOST_TAMERISK_LIBRARY_H

#include <tamerisk/tamerisk.h>

// The library at TAMERISK_LIBRARY_PATH, loaded on first use and kept for the
// rest of the process, as hosts keep it. The error text is empty when the
// library loaded and every function was found.
const TameriskFunctions& Tamerisk();
const char* TameriskLoadError();

#endif
