#include "files.h"

#include "failure.h"
#include "text.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <openssl/crypto.h>
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

std::string reason(int error)
{
    return std::string(": ") + strerrordesc_np(error);
}

Descriptor openFile(const std::string &what, const std::string &path)
{
    Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status;
    if (!file.isOpen() && errno == ENOENT)
        throw Failure(what + " not found: " + printable(path));
    if (!file.isOpen() || fstat(file.number(), &status) != 0)
        throw Failure(what + " cannot be read: " + printable(path) + reason(errno));
    if (!S_ISREG(status.st_mode))
        throw Failure(what + " is no regular file: " + printable(path));
    return file;
}

ssize_t readAt(int descriptor, off_t position, char *bytes, std::size_t size)
{
    std::size_t done = 0;
    while (done < size) {
        const ssize_t count =
            pread(descriptor, bytes + done, size - done, position + static_cast<off_t>(done));
        if (count == 0)
            break;
        if (count > 0)
            done += static_cast<std::size_t>(count);
        else if (errno != EINTR)
            return -1;
    }
    return static_cast<ssize_t>(done);
}

FileContents::FileContents(const std::string &what, const std::string &path)
    : m_bytes(LARGEST + 1)
{
    const Descriptor file = openFile(what, path);
    const ssize_t size = readAt(file.number(), 0, m_bytes.data(), m_bytes.size());
    if (size < 0)
        throw Failure(what + " cannot be read: " + printable(path) + reason(errno));
    m_size = static_cast<std::size_t>(size);
    if (m_size > LARGEST)
        throw Failure(what + " is too large: " + printable(path));
}

FileContents::~FileContents()
{
    OPENSSL_cleanse(m_bytes.data(), m_bytes.size());
}
