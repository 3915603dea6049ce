// Symbol visibility of libtamerisk.so: everything is hidden except what a
// host may use, which is marked TAMERISK_API.
#ifndef TAMERISK_EXPORT_H
#define TAMERISK_EXPORT_H

#define TAMERISK_API __attribute__((visibility("default")))

#endif
