#include "package.h"

#include "failure.h"
#include "interruption.h"
#include "text.h"

#include <algorithm>
#include <cerrno>
#include <future>

static constexpr std::size_t LEAD_SIZE = 96;
static constexpr std::string_view LEAD_MAGIC = "\xed\xab\xee\xdb";
static constexpr std::string_view HEADER_MAGIC = "\x8e\xad\xe8\x01";
// As many as rpm reads.
static constexpr HeaderLimits LIMITS{0xffff, 0xfffffff};
static constexpr std::size_t LARGEST_PIECE = 0x100000;

static bool isSame(const timespec &one, const timespec &other)
{
    return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
}

// The time of the last change is not looked at: a new name changes it, too.
bool isSameFile(const struct stat &one, const struct stat &other)
{
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino && one.st_size == other.st_size
           && isSame(one.st_mtim, other.st_mtim);
}

static std::string readPart(const Descriptor &file, std::size_t position, std::size_t size)
{
    std::string bytes(size, '\0');
    const ssize_t count =
        readAt(file.number(), static_cast<off_t>(position), bytes.data(), bytes.size());
    bytes.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
    return bytes;
}

static Failure otherKind(const std::string &path)
{
    return Failure("not an RPM package: " + printable(path));
}

Package::Package(const std::string &path)
    : m_path(path)
    , m_file(openFile("package", path))
    , m_lead(readPart(m_file, 0, LEAD_SIZE))
    , m_signatureHeader(readSignatureHeader())
{
    const auto start = static_cast<std::size_t>(m_restStart);
    if (readPart(m_file, start, HEADER_MAGIC.size()) != HEADER_MAGIC)
        throw otherKind(path);
}

SignatureHeader Package::readSignatureHeader()
{
    if (m_lead.size() != LEAD_SIZE || !m_lead.starts_with(LEAD_MAGIC)
        || fstat(m_file.number(), &m_status) != 0)
        throw otherKind(m_path);
    try {
        const std::size_t size =
            SignatureHeader::sizeOf(readPart(m_file, LEAD_SIZE, HEADER_INTRODUCTION_SIZE));
        m_restStart = static_cast<off_t>(LEAD_SIZE + size);
        return SignatureHeader(readPart(m_file, LEAD_SIZE, size));
    } catch (const Failure &failure) {
        throw Failure(failure.what() + (": " + printable(m_path)));
    }
}

std::vector<HeaderEntry> Package::header() const
{
    const auto start = static_cast<std::size_t>(m_restStart);
    try {
        const std::size_t size =
            headerSize(readPart(m_file, start, HEADER_INTRODUCTION_SIZE), LIMITS);
        const std::string bytes = readPart(m_file, start, size);
        requireHeader(bytes.size() == size, "it ends early");
        return headerEntries(bytes);
    } catch (const Failure &failure) {
        throw Failure(failure.what() + (": " + printable(m_path)));
    }
}

void Package::requireUnchanged() const
{
    struct stat status;
    if (stat(m_path.c_str(), &status) != 0 || !isSameFile(status, m_status)
        || !isSame(status.st_ctim, m_status.st_ctim))
        throw Failure("the package changed meanwhile: " + printable(m_path));
}

void requirePackages(const std::vector<std::string> &paths)
{
    for (const std::string &path : paths)
        const Package package(path);
}

static BioChain chainOf(const std::set<int> &kinds)
{
    BioChain chain(BIO_new(BIO_s_null()));
    for (const int kind : kinds) {
        BIO *digest = BIO_new(BIO_f_md());
        if (BIO_set_md(digest, EVP_get_digestbynid(kind)) <= 0) {
            BIO_free(digest);
            continue; // No signature with it can be made or checked.
        }
        chain.reset(BIO_push(digest, chain.release()));
    }
    return chain;
}

static std::string sha256(const std::string &bytes)
{
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned size = 0;
    EVP_Digest(bytes.data(), bytes.size(), digest, &size, EVP_sha256(), nullptr);
    return {reinterpret_cast<char *>(digest), size};
}

PackageDigests::PackageDigests(const Package &package,
                               const SignatureHeader &header,
                               const DigestKinds &kinds)
    : m_kinds(kinds)
    , m_ofFileSignatures(sha256(header.fileSignatures()))
{
    for (const Coverage coverage : {Coverage::Contents, Coverage::Whole}) {
        const auto wanted = kinds.find(coverage);
        m_chains[coverage] = chainOf(wanted == kinds.end() ? std::set<int>() : wanted->second);
    }
    add(package.lead(), package.path());
    SignatureHeader bare = header;
    bare.setSignatures({});
    const std::string bytes = bare.bytes();
    BIO_write(chain(Coverage::Whole), bytes.data(), static_cast<int>(bytes.size()));
    read(package);
    package.requireUnchanged();
}

void PackageDigests::add(std::string_view bytes, const std::string &path) const
{
    const auto size = static_cast<int>(bytes.size());
    for (const auto &[coverage, chain] : m_chains)
        if (BIO_write(chain.get(), bytes.data(), size) != size)
            throw Failure("cannot digest the package: " + printable(path));
}

// A piece is digested while the next one is read.
void PackageDigests::read(const Package &package)
{
    const auto restSize = static_cast<std::size_t>(package.restSize());
    std::vector<char> piece(std::min(restSize + 1, LARGEST_PIECE));
    std::vector<char> nextPiece(restSize < piece.size() ? 0 : piece.size());
    off_t position = package.restStart();
    // What is negative is an error's number: each thread has an errno of its own.
    const auto fill = [&](std::vector<char> &bytes) -> ssize_t {
        const ssize_t size = readAt(package.descriptor(), position, bytes.data(), bytes.size());
        position += std::max<ssize_t>(size, 0);
        return size < 0 ? -errno : size;
    };
    ssize_t size = fill(piece);
    while (size > 0) {
        Interruption::check();
        std::future<ssize_t> nextSize;
        if (!nextPiece.empty())
            nextSize = std::async(std::launch::async, [&] { return fill(nextPiece); });
        add({piece.data(), static_cast<std::size_t>(size)}, package.path());
        size = nextSize.valid() ? nextSize.get() : 0;
        std::swap(piece, nextPiece);
    }
    if (size < 0)
        throw Failure("package cannot be read: " + printable(package.path())
                      + reason(static_cast<int>(-size)));
}

std::string PackageDigests::ofContents() const
{
    EVP_MD_CTX *context = nullptr;
    const DigestContext copy(EVP_MD_CTX_new());
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned size = 0;
    if (BIO_get_md_ctx(chain(Coverage::Contents), &context) != 1
        || EVP_MD_CTX_copy_ex(copy.get(), context) != 1
        || EVP_DigestFinal_ex(copy.get(), digest, &size) != 1)
        return {};
    return {reinterpret_cast<char *>(digest), size};
}

bool PackageDigests::isOfSame(const PackageDigests &other) const
{
    const std::string digest = ofContents();
    return !digest.empty() && digest == other.ofContents();
}
