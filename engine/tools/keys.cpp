#include "keys.h"

#include "failure.h"
#include "files.h"
#include "interruption.h"
#include "passphrase.h"
#include "strength.h"
#include "text.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <openssl/crypto.h>
#include <openssl/pem.h>
#include <openssl/pkcs12.h>
#include <sys/prctl.h>

static constexpr int ATTEMPTS = 3;

ClosedMemory::ClosedMemory()
{
    prctl(PR_SET_DUMPABLE, 0);
}

ClosedMemory::~ClosedMemory()
{
    prctl(PR_SET_DUMPABLE, 1);
}

static void wipeAndFree(void *block, const char *, int)
{
    if (block)
        OPENSSL_cleanse(block, malloc_usable_size(block));
    std::free(block);
}

static void *allocate(std::size_t size, const char *, int)
{
    return std::malloc(size);
}

static void *reallocate(void *block, std::size_t size, const char *, int)
{
    void *grown = std::malloc(size);
    if (block && grown) {
        std::memcpy(grown, block, std::min(size, malloc_usable_size(block)));
        wipeAndFree(block, nullptr, 0);
    }
    return grown;
}

void wipeFreedMemory()
{
    CRYPTO_set_mem_functions(allocate, reallocate, wipeAndFree);
}

static std::string promptFor(const std::string &path)
{
    return "Enter pass phrase for " + printable(path) + ':';
}

// How libcrypto gets at the PassPhrase that is its user's data.
static UiMethod passPhraseMethod()
{
    UiMethod method(UI_create_method("pass phrase"));
    UI_method_set_reader(method.get(), [](UI *ui, UI_STRING *question) {
        const char *text = static_cast<PassPhrase *>(UI_get0_user_data(ui))->text();
        return text && UI_set_result(ui, question, text) == 0 ? 1 : 0;
    });
    return method;
}

// The objects of the kind, as far as the file can be understood.
static std::vector<StoreItem> readItems(const FileContents &file, int kind, PassPhrase &passPhrase)
{
    std::vector<StoreItem> items;
    const BioChain bytes(BIO_new_mem_buf(file.bytes(), static_cast<int>(file.size())));
    const UiMethod method = passPhraseMethod();
    const Store store(OSSL_STORE_attach(bytes.get(),
                                        "file",
                                        nullptr,
                                        nullptr,
                                        method.get(),
                                        &passPhrase,
                                        nullptr,
                                        nullptr,
                                        nullptr));
    if (!store || OSSL_STORE_expect(store.get(), kind) == 0)
        return items;
    while (OSSL_STORE_eof(store.get()) == 0) {
        const std::size_t left = BIO_ctrl_pending(bytes.get());
        StoreItem item(OSSL_STORE_load(store.get()));
        if (item && OSSL_STORE_INFO_get_type(item.get()) == kind)
            items.push_back(std::move(item));
        else if (!item && (passPhrase.isAsked() || BIO_ctrl_pending(bytes.get()) == left))
            break;
    }
    return items;
}

// True when a key is there, and open, but libcrypto does not know what it is for: a GOST key where
// the engine for it is missing.
static bool isOfUnknownKind(const FileContents &file, PassPhrase &passPhrase)
{
    const BioChain bytes(BIO_new_mem_buf(file.bytes(), static_cast<int>(file.size())));
    KeyInfo key(PEM_read_bio_PKCS8_PRIV_KEY_INFO(bytes.get(), nullptr, nullptr, nullptr));
    if (!key && passPhrase.isGiven() && BIO_reset(bytes.get()) == 1) {
        const EncryptedKey encrypted(PEM_read_bio_PKCS8(bytes.get(), nullptr, nullptr, nullptr));
        if (encrypted)
            key.reset(PKCS8_decrypt(encrypted.get(), passPhrase.text(), -1));
    }
    const ASN1_OBJECT *kind = nullptr;
    return key && PKCS8_pkey_get0(&kind, nullptr, nullptr, nullptr, key.get()) == 1
           && EVP_PKEY_type(OBJ_obj2nid(kind)) == NID_undef;
}

static Key keyIn(const StoreItem &item, const std::string &path)
{
    Key key(OSSL_STORE_INFO_get1_PKEY(item.get()));
    if (!isStrong(key.get()))
        throw Failure("the key is too weak: " + printable(path));
    return key;
}

Key readKey(const std::string &what, const std::string &path, const std::string &prompt)
{
    const FileContents file(what, path);
    const std::string wrong = "wrong pass phrase for the key: " + printable(path);
    for (int attempt = 1;; ++attempt) {
        PassPhrase passPhrase(prompt);
        const std::vector<StoreItem> items = readItems(file, OSSL_STORE_INFO_PKEY, passPhrase);
        Interruption::check();
        if (!items.empty())
            return keyIn(items.front(), path);
        if (isOfUnknownKind(file, passPhrase))
            throw Failure("the target knows no keys of this kind: " + printable(path));
        if (!passPhrase.isAsked())
            throw Failure("cannot read a private key from: " + printable(path));
        if (!passPhrase.isGiven() && attempt == 1)
            throw Failure("no pass phrase given for the key: " + printable(path));
        if (!passPhrase.isGiven() || attempt == ATTEMPTS)
            throw Failure(wrong);
        writeAll(STDERR_FILENO, wrong + ", try again\n");
    }
}

Key readKey(const std::string &path)
{
    return readKey("key", path, promptFor(path));
}

static void requireSigner(X509 *certificate, const Key &key, const std::string &path)
{
    const auto require = [&](bool condition, const char *fault) {
        if (!condition)
            throw Failure(fault + printable(path));
    };
    require(X509_cmp_current_time(X509_get0_notBefore(certificate)) < 0,
            "the certificate is not valid yet: ");
    require(X509_cmp_current_time(X509_get0_notAfter(certificate)) > 0,
            "the certificate has expired: ");
    require(X509_check_private_key(certificate, key.get()) == 1,
            "the key does not fit the certificate: ");
    require(isForSigning(certificate), "the certificate is not for signatures: ");
    require(isSignedStrongly(certificate), "the certificate itself is signed too weakly: ");
}

CertificateChain readCertificates(const std::string &path, const Key &key)
{
    const FileContents file("certificate", path);
    PassPhrase passPhrase(promptFor(path)); // of a container
    CertificateChain certificates;
    for (const StoreItem &item : readItems(file, OSSL_STORE_INFO_CERT, passPhrase))
        certificates.emplace_back(OSSL_STORE_INFO_get1_CERT(item.get()));
    Interruption::check();
    if (certificates.empty())
        throw Failure("cannot read a certificate from: " + printable(path));
    requireSigner(certificates.front().get(), key, path);
    return certificates;
}
