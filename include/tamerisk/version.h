// The version of Tamerisk these headers belong to. The build takes its
// version from here, so the headers, the library's file name
// (libtamerisk.so.MAJOR.MINOR.PATCH), its SONAME (libtamerisk.so.MAJOR) and
// the CMake and pkg-config packages always agree.
//
// A host compares TAMERISK_VERSION, which it was built with, against
// Tamerisk_GetVersion(), the library it runs with: the major numbers must be
// equal, and the library's minor number at least the header's.
#ifndef TAMERISK_VERSION_H
#define TAMERISK_VERSION_H

#define TAMERISK_VERSION_MAJOR 1
#define TAMERISK_VERSION_MINOR 1
#define TAMERISK_VERSION_PATCH 0

// 0xMMmmpp: the three numbers in one integer that compares as the version.
#define TAMERISK_MAKE_VERSION(major, minor, patch) (((major) << 16) | ((minor) << 8) | (patch))
#define TAMERISK_VERSION \
    TAMERISK_MAKE_VERSION(TAMERISK_VERSION_MAJOR, TAMERISK_VERSION_MINOR, TAMERISK_VERSION_PATCH)
#define TAMERISK_VERSION_STRING "1.1.0"

#endif
