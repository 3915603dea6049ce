// Reading a file or a pipe without trusting its size: never more than the
// caller can take, so that a huge file is refused, not held in memory.
#ifndef TAMERISK_MATERIAL_BOUNDED_READ_H
#define TAMERISK_MATERIAL_BOUNDED_READ_H

#include <cstddef>
#include <string>

// Reads from fd, from where it stands, until limit bytes are read or the
// data ends; bytes holds what was read. 0, or the errno of a failed read.
[[nodiscard]] int ReadAtMost(int fd, std::size_t limit, std::string& bytes);

#endif
