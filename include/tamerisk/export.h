// Symbol visibility of libtamerisk.so: everything is hidden except the C
// functions a host calls, which are marked TAMERISK_API. The library's
// version script gives them the symbol version TAMERISK_1.
#ifndef TAMERISK_EXPORT_H
#define TAMERISK_EXPORT_H

#define TAMERISK_API __attribute__((visibility("default")))

#endif
