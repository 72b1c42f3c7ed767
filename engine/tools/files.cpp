#include "files.h"

#include "failure.h"

#include <cerrno>
#include <sys/stat.h>

bool writeAll(int descriptor, const std::string &bytes)
{
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t count = write(descriptor, bytes.data() + done, bytes.size() - done);
        if (count > 0)
            done += static_cast<std::size_t>(count);
        else if (count == 0 || errno != EINTR)
            return false;
    }
    return true;
}

void requireFile(const std::string &what, const std::string &path)
{
    struct stat status;
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        throw Failure(what + " not found: " + path);
    if (access(path.c_str(), R_OK) != 0)
        throw Failure(what + " cannot be read: " + path);
}
