#include "replacement.h"

#include "interruption.h"
#include "text.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <linux/limits.h>
#include <sys/xattr.h>
#include <utility>
#include <vector>

// Hidden, so that nobody takes it for a package or for a file that belongs to one.
static constexpr std::string_view STAGED_PREFIX = ".";
static constexpr std::string_view STAGED_SUFFIX = ".signing";
// Where file systems cannot exchange two files: the old one's second name for a moment.
static constexpr std::string_view ASIDE_SUFFIX = ".signing.old";
// A signal is heeded behind each of them.
static constexpr std::size_t LARGEST_PIECE = 0x1000000;

std::string packageOfStaged(std::string_view name)
{
    for (const std::string_view suffix : {ASIDE_SUFFIX, STAGED_SUFFIX})
        if (name.size() > STAGED_PREFIX.size() + suffix.size() && name.starts_with(STAGED_PREFIX)
            && name.ends_with(suffix))
            return std::string(name.substr(STAGED_PREFIX.size(),
                                           name.size() - suffix.size() - STAGED_PREFIX.size()));
    return {};
}

static std::string stagedName(const PackagePlace &place, std::string_view suffix)
{
    return std::string(STAGED_PREFIX) + place.name + std::string(suffix);
}

// Copies what is left of a file, by the file system itself where that can.
static bool copyRest(int source, off_t position, int destination)
{
    ssize_t count = 0;
    do {
        Interruption::check();
        count = copy_file_range(source, &position, destination, nullptr, LARGEST_PIECE, 0);
    } while (count > 0);
    if (count == 0)
        return true;
    std::string piece(LARGEST_PIECE / 16, '\0');
    while ((count = readAt(source, position, piece.data(), piece.size())) > 0) {
        Interruption::check();
        if (!writeAll(destination, piece.substr(0, static_cast<std::size_t>(count))))
            return false;
        position += count;
    }
    return count == 0;
}

static std::string attribute(int file, const char *name)
{
    std::string value(XATTR_SIZE_MAX, '\0');
    const ssize_t size = fgetxattr(file, name, value.data(), value.size());
    return value.substr(0, static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
}

// Also those in which the access list is kept. What the system has set by itself already may not be
// for us to set.
static bool copyAttributes(int source, int destination)
{
    std::string names(XATTR_LIST_MAX, '\0');
    const ssize_t size = flistxattr(source, names.data(), names.size());
    names.resize(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    for (std::size_t start = 0; start < names.size();) {
        const char *name = names.c_str() + start;
        start += std::string_view(name).size() + 1;
        const std::string value = attribute(source, name);
        if (fsetxattr(destination, name, value.data(), value.size(), 0) != 0
            && attribute(destination, name) != value)
            return false;
    }
    return true;
}

// The mode comes behind the owner, whose change would take bits of it away.
static bool copyMetadata(int source, const struct stat &status, int destination)
{
    struct stat own;
    return fstat(destination, &own) == 0
           && ((own.st_uid == status.st_uid && own.st_gid == status.st_gid)
               || fchown(destination, status.st_uid, status.st_gid) == 0)
           && fchmod(destination, status.st_mode & 07777) == 0
           && copyAttributes(source, destination);
}

static bool exchangeNames(int folder, const std::string &staged, const PackagePlace &place)
{
    const char *name = place.name.c_str();
    if (renameat2(folder, staged.c_str(), folder, name, RENAME_EXCHANGE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS)
        return false;
    const std::string aside = stagedName(place, ASIDE_SUFFIX);
    if (linkat(folder, name, folder, aside.c_str(), 0) != 0)
        return false;
    if (renameat(folder, staged.c_str(), folder, name) == 0)
        return renameat(folder, aside.c_str(), folder, staged.c_str()) == 0;
    const int error = errno;
    unlinkat(folder, aside.c_str(), 0);
    errno = error;
    return false;
}

Replacement::Replacement(const PackagePlace &place,
                         const Package &package,
                         const SignatureHeader &header)
    : m_place(place)
    , m_header(header)
    , m_original(package.status())
{
    if (m_original.st_nlink > 1)
        throw Failure("the package has several hard links, of which only one would be signed: "
                      + printable(place.path));
}

Replacement::~Replacement()
{
    undo();
}

Failure Replacement::cannotWrite(int error) const
{
    return Failure("cannot write a new package beside the old one: " + printable(m_place.path)
                   + reason(error));
}

std::string Replacement::stagedFile() const
{
    return m_place.file.substr(0, m_place.file.size() - m_place.name.size())
           + stagedName(m_place, STAGED_SUFFIX);
}

Descriptor Replacement::write(const Package &package)
{
    const std::string name = stagedName(m_place, STAGED_SUFFIX);
    Descriptor file(openat(m_place.folder->descriptor(),
                           name.c_str(),
                           O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                           0600));
    if (!file.isOpen())
        throw cannotWrite(errno);
    m_name = name;
    if (!writeAll(file.number(), package.lead() + m_header.bytes())
        || !copyRest(package.descriptor(), package.restStart(), file.number())
        || !copyMetadata(package.descriptor(), m_original, file.number())
        || fstat(file.number(), &m_new) != 0)
        throw cannotWrite(errno);
    return file;
}

void Replacement::synchronize(const Descriptor &file) const
{
    if (fsync(file.number()) != 0)
        throw cannotWrite(errno);
}

void Replacement::requireUnchanged() const
{
    struct stat status;
    const std::string &name = m_isExchanged ? m_name : m_place.name;
    if (fstatat(m_place.folder->descriptor(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0
        || !isSameFile(status, m_original))
        throw Failure("the package changed meanwhile: " + printable(m_place.path));
}

void Replacement::exchange()
{
    if (!exchangeNames(m_place.folder->descriptor(), m_name, m_place))
        throw Failure("cannot put the new package in the place of the old one: "
                      + printable(m_place.path) + reason(errno));
    m_isExchanged = true;
}

void Replacement::keep()
{
    m_isExchanged = false;
    undo();
}

// A package that somebody has put in place meanwhile stays there.
void Replacement::undo() noexcept
{
    const std::string name = std::exchange(m_name, {});
    const int folder = m_place.folder->descriptor();
    struct stat status;
    if (name.empty())
        return;
    if (m_isExchanged && fstatat(folder, m_place.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0
        && isSameFile(status, m_new) && !exchangeNames(folder, name, m_place))
        return; // The old package is not removed.
    unlinkat(folder, name.c_str(), 0);
}
