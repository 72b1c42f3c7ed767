#include "filesignatures.h"

#include "failure.h"
#include "text.h"

#include <algorithm>
#include <cctype>
#include <openssl/err.h>
#include <openssl/sha.h>
#include <set>

static constexpr std::uint32_t FILE_DIGESTS_TAG = 1035;
static constexpr std::uint32_t FILE_COLORS_TAG = 1140;
static constexpr std::uint32_t FILE_CLASSES_TAG = 1141;
static constexpr std::uint32_t CLASS_NAMES_TAG = 1142;
static constexpr std::uint32_t DIGEST_ALGORITHM_TAG = 5011;

// What rpm's builder has found a file to be: in its words, which format 6 lacks, and as a bit.
static constexpr std::string_view ELF_CLASS = "ELF ";
static constexpr std::uint32_t ELF_COLORS = 7;
// The kind of the attribute that holds the signature, and the version.
static constexpr std::string_view IMA_START = "\x03\x02";
static constexpr std::size_t KEY_ID_SIZE = 4;
static constexpr std::size_t KEY_ID_AT = 3;
static constexpr std::size_t VALUE_AT = 9;

/// A digest, by the names that it has here and there.
struct DigestAlgorithm
{
    std::uint32_t rpms;
    char kernels;
    const EVP_MD *(*opensslDigest)();
};

static constexpr DigestAlgorithm ALGORITHMS[] = {
    {8, 4, EVP_sha256}, {9, 5, EVP_sha384}, {10, 6, EVP_sha512}, {11, 7, EVP_sha224}};

/// The files of a package that get signed.
struct Binaries
{
    std::size_t fileCount = 0;
    std::map<std::size_t, std::string> digests; ///< of the ELF files, by their place among all
    std::uint32_t algorithm = 0;
};

static HeaderEntry entryOf(const std::vector<HeaderEntry> &header, std::uint32_t tag)
{
    const auto found = std::find_if(
        header.begin(), header.end(), [&](const HeaderEntry &entry) { return entry.tag == tag; });
    return found == header.end() ? HeaderEntry() : *found;
}

static std::string bytesOf(std::string_view digits)
{
    std::string bytes(digits.size() / 2, '\0');
    std::size_t size = 0;
    const int result = OPENSSL_hexstr2buf_ex(reinterpret_cast<unsigned char *>(bytes.data()),
                                             bytes.size(),
                                             &size,
                                             std::string(digits).c_str(),
                                             '\0');
    return result == 1 && size == bytes.size() ? bytes : std::string();
}

static std::vector<bool> elfFilesOf(const std::vector<HeaderEntry> &header)
{
    const std::vector<std::uint32_t> colors = entryOf(header, FILE_COLORS_TAG).numbers();
    const std::vector<std::uint32_t> classes = entryOf(header, FILE_CLASSES_TAG).numbers();
    const std::vector<std::string> names = entryOf(header, CLASS_NAMES_TAG).texts();
    std::vector<bool> areElf(std::max(colors.size(), classes.size()));
    for (std::size_t i = 0; i < areElf.size(); ++i)
        areElf[i] = (i < colors.size() && (colors[i] & ELF_COLORS) != 0)
                    || (i < classes.size() && classes[i] < names.size()
                        && names[classes[i]].starts_with(ELF_CLASS));
    return areElf;
}

static Binaries binariesOf(const Package &package)
{
    const std::vector<HeaderEntry> header = package.header();
    const std::vector<std::string> digests = entryOf(header, FILE_DIGESTS_TAG).texts();
    const std::vector<bool> areElf = elfFilesOf(header);
    const std::vector<std::uint32_t> algorithm = entryOf(header, DIGEST_ALGORITHM_TAG).numbers();
    Binaries binaries{digests.size(), {}, algorithm.empty() ? 0 : algorithm.front()};
    for (std::size_t i = 0; i < std::min(digests.size(), areElf.size()); ++i)
        if (areElf[i])
            binaries.digests[i] = bytesOf(digests[i]);
    std::erase_if(binaries.digests, [](const auto &file) { return file.second.empty(); });
    return binaries;
}

static const DigestAlgorithm &algorithmOf(const Binaries &binaries, const Package &package)
{
    const auto *const found =
        std::find_if(std::begin(ALGORITHMS), std::end(ALGORITHMS), [&](const auto &algorithm) {
            return algorithm.rpms == binaries.algorithm;
        });
    if (found == std::end(ALGORITHMS))
        throw Failure("the package's digests of its files are too weak: "
                      + printable(package.path()));
    return *found;
}

// The end of SHA-1 of the public key, as the kernel has it.
static std::string keyIdOf(const Key &key)
{
    X509_PUBKEY *made = nullptr;
    X509_PUBKEY_set(&made, key.get());
    const std::unique_ptr<X509_PUBKEY, Freeing<X509_PUBKEY_free>> publicKey(made);
    const unsigned char *bytes = nullptr;
    int size = 0;
    unsigned char digest[SHA_DIGEST_LENGTH] = {};
    if (publicKey && X509_PUBKEY_get0_param(nullptr, &bytes, &size, nullptr, publicKey.get()) == 1)
        SHA1(bytes, static_cast<std::size_t>(size), digest);
    return {reinterpret_cast<char *>(digest) + SHA_DIGEST_LENGTH - KEY_ID_SIZE, KEY_ID_SIZE};
}

static KeyContext contextOf(const Key &key)
{
    return KeyContext(EVP_PKEY_CTX_new(key.get(), nullptr));
}

static const unsigned char *unsignedBytes(std::string_view bytes)
{
    return reinterpret_cast<const unsigned char *>(bytes.data());
}

static std::string
signatureOf(const Key &key, const DigestAlgorithm &algorithm, const std::string &digest)
{
    ERR_clear_error();
    const KeyContext context = contextOf(key);
    std::string value(static_cast<std::size_t>(EVP_PKEY_get_size(key.get())), '\0');
    std::size_t size = value.size();
    if (EVP_PKEY_sign_init(context.get()) != 1
        || EVP_PKEY_CTX_set_signature_md(context.get(), algorithm.opensslDigest()) != 1
        || EVP_PKEY_sign(context.get(),
                         reinterpret_cast<unsigned char *>(value.data()),
                         &size,
                         unsignedBytes(digest),
                         digest.size())
               != 1) {
        const char *why = ERR_reason_error_string(ERR_peek_last_error());
        throw Failure(std::string("cannot sign binaries with this key: ")
                      + (why ? why : "unknown error"));
    }
    value.resize(size);
    return std::string(IMA_START) + algorithm.kernels + keyIdOf(key) + bigEndian({size}).substr(2)
           + value;
}

static bool isSignedBy(const Key &key,
                       const DigestAlgorithm &algorithm,
                       const std::string &digest,
                       const std::string &signature)
{
    const std::string start = std::string(IMA_START) + algorithm.kernels + keyIdOf(key);
    if (!signature.starts_with(start) || signature.size() <= VALUE_AT)
        return false;
    const std::string_view value = std::string_view(signature).substr(VALUE_AT);
    const KeyContext context = contextOf(key);
    return EVP_PKEY_verify_init(context.get()) == 1
           && EVP_PKEY_CTX_set_signature_md(context.get(), algorithm.opensslDigest()) == 1
           && EVP_PKEY_verify(context.get(),
                              unsignedBytes(value),
                              value.size(),
                              unsignedBytes(digest),
                              digest.size())
                  == 1;
}

void signBinaries(const Key &key, const Package &package, SignatureHeader &header)
{
    const Binaries binaries = binariesOf(package);
    if (binaries.digests.empty())
        return;
    const DigestAlgorithm &algorithm = algorithmOf(binaries, package);
    std::vector<std::string> signatures = header.imaSignatures();
    if (!signatures.empty()) {
        signatures.resize(binaries.fileCount);
        for (const auto &[file, digest] : binaries.digests)
            if (!isSignedBy(key, algorithm, digest, bytesOf(signatures[file])))
                throw Failure("another key has signed files of the package: "
                              + printable(package.path()));
        return;
    }
    if (!header.signatures().empty())
        throw Failure("signing the binaries would break the signatures that are there: "
                      + printable(package.path()));
    signatures.resize(binaries.fileCount);
    for (const auto &[file, digest] : binaries.digests)
        signatures[file] = hexadecimal(signatureOf(key, algorithm, digest));
    std::for_each(signatures.begin(), signatures.end(), [](std::string &digits) {
        std::transform(digits.begin(), digits.end(), digits.begin(), [](unsigned char digit) {
            return static_cast<char>(std::tolower(digit)); // as rpm writes them
        });
    });
    header.setImaSignatures(signatures);
}

std::string describeFileSignatures(const SignatureHeader &header)
{
    const std::vector<std::string> signatures = header.imaSignatures();
    std::size_t count = 0;
    std::set<std::string> keys;
    for (const std::string &digits : signatures) {
        const std::string signature = bytesOf(digits);
        if (!signature.starts_with(IMA_START) || signature.size() <= VALUE_AT)
            continue;
        ++count;
        keys.insert(hexadecimal(std::string_view(signature).substr(KEY_ID_AT, KEY_ID_SIZE)));
    }
    std::string text;
    for (const std::string &key : keys)
        text += (text.empty() ? " by " : ", ") + key;
    return count == 0 ? text
                      : std::to_string(count) + " of " + std::to_string(signatures.size())
                            + " signed" + text;
}
