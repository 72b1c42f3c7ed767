#include "keys.h"

#include "failure.h"
#include "files.h"

#include <array>
#include <openssl/crypto.h>
#include <openssl/pem.h>
#include <openssl/pkcs12.h>
#include <sys/prctl.h>

static constexpr int ATTEMPTS = 3;
static constexpr int PASS_PHRASE_LIMIT = 1024;

ClosedMemory::ClosedMemory()
{
    prctl(PR_SET_DUMPABLE, 0);
}

ClosedMemory::~ClosedMemory()
{
    prctl(PR_SET_DUMPABLE, 1);
}

/// What the user types at the prompt. It is asked for when it is needed first, and wiped out in the
/// end.
class PassPhrase
{
public:
    explicit PassPhrase(const std::string &prompt)
        : m_prompt(prompt)
    {
    }
    ~PassPhrase() { OPENSSL_cleanse(m_text.data(), m_text.size()); }
    PassPhrase(const PassPhrase &) = delete;
    PassPhrase &operator=(const PassPhrase &) = delete;

    const char *text()
    {
        if (!m_isAsked)
            ask();
        return m_isGiven ? m_text.data() : nullptr;
    }
    bool isAsked() const { return m_isAsked; }
    bool isGiven() const { return m_isGiven; }

private:
    void ask()
    {
        m_isAsked = true;
        const Ui terminal(UI_new_method(UI_OpenSSL()));
        m_isGiven = terminal
                    && UI_add_input_string(
                           terminal.get(), m_prompt.c_str(), 0, m_text.data(), 0, PASS_PHRASE_LIMIT)
                           > 0
                    && UI_process(terminal.get()) == 0;
    }

    const std::string m_prompt;
    std::array<char, PASS_PHRASE_LIMIT + 1> m_text{};
    bool m_isAsked = false;
    bool m_isGiven = false;
};

static std::string promptFor(const std::string &path)
{
    return "Enter pass phrase for " + path + ':';
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

// The first object of the kind in the file, or null.
static StoreItem readItem(const std::string &path, int kind, PassPhrase &passPhrase)
{
    const BioChain file(BIO_new_file(path.c_str(), "rb"));
    const UiMethod method = passPhraseMethod();
    if (!file)
        return nullptr;
    const Store store(OSSL_STORE_attach(file.get(),
                                        "file",
                                        nullptr,
                                        nullptr,
                                        method.get(),
                                        &passPhrase,
                                        nullptr,
                                        nullptr,
                                        nullptr));
    if (!store || OSSL_STORE_expect(store.get(), kind) == 0)
        return nullptr;
    while (OSSL_STORE_eof(store.get()) == 0) {
        StoreItem item(OSSL_STORE_load(store.get()));
        if (item && OSSL_STORE_INFO_get_type(item.get()) == kind)
            return item;
        if (passPhrase.isAsked())
            break;
    }
    return nullptr;
}

// True when a key is there, and open, but libcrypto does not know what it is for: a GOST key where
// the engine for it is missing.
static bool isOfUnknownKind(const std::string &path, PassPhrase &passPhrase)
{
    const BioChain file(BIO_new_file(path.c_str(), "rb"));
    if (!file)
        return false;
    KeyInfo key(PEM_read_bio_PKCS8_PRIV_KEY_INFO(file.get(), nullptr, nullptr, nullptr));
    if (!key && passPhrase.isGiven() && BIO_seek(file.get(), 0) == 0) {
        const EncryptedKey encrypted(PEM_read_bio_PKCS8(file.get(), nullptr, nullptr, nullptr));
        if (encrypted)
            key.reset(PKCS8_decrypt(encrypted.get(), passPhrase.text(), -1));
    }
    const ASN1_OBJECT *kind = nullptr;
    return key && PKCS8_pkey_get0(&kind, nullptr, nullptr, nullptr, key.get()) == 1
           && EVP_PKEY_type(OBJ_obj2nid(kind)) == NID_undef;
}

Key readKey(const std::string &what, const std::string &path, const std::string &prompt)
{
    requireFile(what, path);
    const std::string wrong = "wrong pass phrase for the key: " + path;
    for (int attempt = 1;; ++attempt) {
        PassPhrase passPhrase(prompt);
        const StoreItem item = readItem(path, OSSL_STORE_INFO_PKEY, passPhrase);
        if (item)
            return Key(OSSL_STORE_INFO_get1_PKEY(item.get()));
        if (isOfUnknownKind(path, passPhrase))
            throw Failure("the target knows no keys of this kind: " + path);
        if (!passPhrase.isAsked())
            throw Failure("cannot read a private key from: " + path);
        if (!passPhrase.isGiven() && attempt == 1)
            throw Failure("no pass phrase given for the key: " + path);
        if (!passPhrase.isGiven() || attempt == ATTEMPTS)
            throw Failure(wrong);
        writeAll(STDERR_FILENO, wrong + ", try again\n");
    }
}

Key readKey(const std::string &path)
{
    return readKey("key", path, promptFor(path));
}

Certificate readCertificate(const std::string &path, const Key &key)
{
    requireFile("certificate", path);
    PassPhrase passPhrase(promptFor(path)); // of a container
    const StoreItem item = readItem(path, OSSL_STORE_INFO_CERT, passPhrase);
    Certificate certificate(item ? OSSL_STORE_INFO_get1_CERT(item.get()) : nullptr);
    if (!certificate)
        throw Failure("cannot read a certificate from: " + path);
    if (X509_cmp_current_time(X509_get0_notBefore(certificate.get())) >= 0)
        throw Failure("the certificate is not valid yet: " + path);
    if (X509_cmp_current_time(X509_get0_notAfter(certificate.get())) <= 0)
        throw Failure("the certificate has expired: " + path);
    if (X509_check_private_key(certificate.get(), key.get()) != 1)
        throw Failure("the key does not fit the certificate: " + path);
    return certificate;
}
