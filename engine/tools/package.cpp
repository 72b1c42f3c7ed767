#include "package.h"

#include "failure.h"
#include "files.h"
#include "interruption.h"
#include "text.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <future>

static constexpr char MAGIC[] = {'\xed', '\xab', '\xee', '\xdb'};
static constexpr std::size_t MAXIMUM_PIECE = 0x400000;

// What is looked at is what is read afterwards, whatever takes its place meanwhile.
static Descriptor openPackage(const std::string &path)
{
    Descriptor package = openFile("package", path);
    char start[sizeof MAGIC] = {};
    if (pread(package.number(), start, sizeof start, 0) != sizeof start
        || std::memcmp(start, MAGIC, sizeof MAGIC) != 0)
        throw Failure("not an RPM package: " + printable(path));
    return package;
}

void requirePackages(const std::vector<std::string> &paths)
{
    for (const std::string &path : paths)
        openPackage(path);
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

// A piece is digested while the next one is read.
void PackageDigests::read(int package)
{
    const auto packageSize = static_cast<std::size_t>(m_status.st_size);
    std::vector<char> piece(std::min(packageSize + 1, MAXIMUM_PIECE));
    std::vector<char> nextPiece(packageSize < piece.size() ? 0 : piece.size());
    ssize_t size = readUpTo(package, piece.data(), piece.size());
    while (size > 0) {
        Interruption::check();
        std::future<ssize_t> nextSize;
        if (!nextPiece.empty())
            nextSize = std::async(std::launch::async, [&] {
                return readUpTo(package, nextPiece.data(), nextPiece.size());
            });
        if (BIO_write(m_chain.get(), piece.data(), static_cast<int>(size)) != size)
            throw Failure("cannot digest the package: " + printable(m_path));
        size = nextSize.valid() ? nextSize.get() : 0;
        std::swap(piece, nextPiece);
    }
    if (size < 0)
        throw Failure("package cannot be read: " + printable(m_path) + reason(errno));
}

void PackageDigests::requireUnchanged() const
{
    struct stat status;
    if (stat(m_path.c_str(), &status) != 0 || !isSame(status, m_status))
        throw Failure("the package changed meanwhile: " + printable(m_path));
}
