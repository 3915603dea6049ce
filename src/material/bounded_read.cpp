#include "material/bounded_read.h"

#include <unistd.h>

#include <cerrno>

int ReadAtMost(int fd, std::size_t limit, std::string& bytes)
{
    bytes.assign(limit, '\0');
    std::size_t got = 0;
    while (got < limit) {
        const ssize_t n = ::read(fd, bytes.data() + got, limit - got);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return errno;
        if (n == 0)
            break;
        got += static_cast<std::size_t>(n);
    }
    bytes.resize(got);
    return 0;
}
