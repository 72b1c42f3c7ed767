#include "package.h"

#include "failure.h"
#include "files.h"
#include "interruption.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <future>

static constexpr char MAGIC[] = {'\xed', '\xab', '\xee', '\xdb'};
static constexpr std::size_t MAXIMUM_PIECE = 0x400000;

static Descriptor openPackage(const std::string &path)
{
    Descriptor package(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!package.isOpen())
        throw Failure("package cannot be read: " + path);
    return package;
}

static void requirePackage(const std::string &path)
{
    requireFile("package", path);
    char start[sizeof MAGIC] = {};
    const Descriptor package = openPackage(path);
    if (::read(package.number(), start, sizeof start) != sizeof start
        || std::memcmp(start, MAGIC, sizeof MAGIC) != 0)
        throw Failure("not an RPM package: " + path);
}

void requirePackages(const std::vector<std::string> &paths)
{
    for (const std::string &path : paths)
        requirePackage(path);
}

static bool isSame(const timespec &one, const timespec &other)
{
    return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
}

static bool isSame(const struct stat &one, const struct stat &other)
{
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino && one.st_size == other.st_size
           && isSame(one.st_mtim, other.st_mtim) && isSame(one.st_ctim, other.st_ctim);
}

PackageDigests::PackageDigests(const std::string &path, const std::set<int> &kinds)
    : m_path(path)
    , m_chain(BIO_new(BIO_s_null()))
{
    for (const int kind : kinds) {
        BIO *digest = BIO_new(BIO_f_md());
        if (BIO_set_md(digest, EVP_get_digestbynid(kind)) <= 0) {
            BIO_free(digest);
            continue; // No signature with it can be made or checked.
        }
        m_chain.reset(BIO_push(digest, m_chain.release()));
    }
    const Descriptor package = openPackage(path);
    fstat(package.number(), &m_status);
    read(package.number());
    requireUnchanged();
}

// Fills the piece, but for the last one of a package. Returns how much is in it; -1 is an error.
static ssize_t readPiece(int package, std::vector<char> &piece)
{
    std::size_t size = 0;
    while (size < piece.size()) {
        const ssize_t count = ::read(package, piece.data() + size, piece.size() - size);
        if (count == 0)
            break;
        if (count > 0)
            size += static_cast<std::size_t>(count);
        else if (errno != EINTR)
            return -1;
    }
    return static_cast<ssize_t>(size);
}

// A piece is digested while the next one is read.
void PackageDigests::read(int package)
{
    const auto packageSize = static_cast<std::size_t>(m_status.st_size);
    std::vector<char> piece(std::min(packageSize + 1, MAXIMUM_PIECE));
    std::vector<char> nextPiece(packageSize < piece.size() ? 0 : piece.size());
    ssize_t size = readPiece(package, piece);
    while (size > 0) {
        Interruption::check();
        std::future<ssize_t> nextSize;
        if (!nextPiece.empty())
            nextSize =
                std::async(std::launch::async, [&] { return readPiece(package, nextPiece); });
        if (BIO_write(m_chain.get(), piece.data(), static_cast<int>(size)) != size)
            throw Failure("cannot digest the package: " + m_path);
        size = nextSize.valid() ? nextSize.get() : 0;
        std::swap(piece, nextPiece);
    }
    if (size < 0)
        throw Failure("package cannot be read: " + m_path);
}

void PackageDigests::requireUnchanged() const
{
    struct stat status;
    if (stat(m_path.c_str(), &status) != 0 || !isSame(status, m_status))
        throw Failure("the package changed meanwhile: " + m_path);
}
