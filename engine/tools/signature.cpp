#include "signature.h"

#include "failure.h"
#include "files.h"
#include "strength.h"
#include "text.h"

#include <algorithm>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

// libcrypto's level of 112 bits, which all certificates on the way to a root must have.
static constexpr int STRENGTH = 2;

bool Signer::isCheckable() const
{
    return certificate && X509_get0_pubkey(certificate) && EVP_get_digestbynid(digest());
}

bool Signer::hasSigned(const PackageDigests &digests) const
{
    return isGenuine() && isOver(digests);
}

bool Signer::isGenuine() const
{
    // Without signed attributes the signature is of the package itself.
    return isCheckable()
           && (CMS_signed_get_attr_count(info) < 0 || CMS_SignerInfo_verify(info) > 0);
}

// Of the attribute that holds SHA-256 of the file signatures in the signature header (made of a
// UUID).
static Object fileSignaturesAttribute()
{
    return Object(OBJ_txt2obj("2.25.124193374718303425478391652984120570641", 1));
}

Coverage Signer::coverage() const
{
    const Object attribute = fileSignaturesAttribute();
    return CMS_signed_get_attr_by_OBJ(info, attribute.get(), -1) < 0 ? Coverage::Whole
                                                                     : Coverage::Contents;
}

// True also for a signature over the whole package, which does not have the attribute.
static bool isOverFileSignatures(CMS_SignerInfo *info, const std::string &digest)
{
    constexpr int onlyOne = -3;
    const Object attribute = fileSignaturesAttribute();
    if (CMS_signed_get_attr_by_OBJ(info, attribute.get(), -1) < 0)
        return true;
    const auto *value = static_cast<const ASN1_OCTET_STRING *>(
        CMS_signed_get0_data_by_OBJ(info, attribute.get(), onlyOne, V_ASN1_OCTET_STRING));
    return value
           && digest
                  == std::string_view(reinterpret_cast<const char *>(ASN1_STRING_get0_data(value)),
                                      static_cast<std::size_t>(ASN1_STRING_length(value)));
}

bool Signer::isOver(const PackageDigests &digests) const
{
    return isCheckable() && isOverFileSignatures(info, digests.ofFileSignatures())
           && CMS_SignerInfo_verify_content(info, digests.chain(coverage())) > 0;
}

int Signer::digest() const
{
    X509_ALGOR *algorithm = nullptr;
    const ASN1_OBJECT *id = nullptr;
    CMS_SignerInfo_get0_algs(info, nullptr, nullptr, &algorithm, nullptr);
    X509_ALGOR_get0(&id, nullptr, nullptr, algorithm);
    return OBJ_obj2nid(id);
}

int Signature::digestFor(const Key &key)
{
    int kind = NID_undef;
    EVP_PKEY_get_default_digest_nid(key.get(), &kind);
    return kind;
}

static bool addSigner(CMS_ContentInfo *cms,
                      const Key &key,
                      const CertificateChain &certificates,
                      const std::string &ofFileSignatures,
                      unsigned flags)
{
    CMS_SignerInfo *signer =
        CMS_add1_signer(cms, certificates.front().get(), key.get(), nullptr, flags);
    return signer
           && CMS_signed_add1_attr_by_OBJ(signer,
                                          fileSignaturesAttribute().get(),
                                          V_ASN1_OCTET_STRING,
                                          ofFileSignatures.data(),
                                          static_cast<int>(ofFileSignatures.size()))
                  == 1
           && std::all_of(
               certificates.begin() + 1, certificates.end(), [&](const Certificate &other) {
                   return CMS_add1_cert(cms, other.get()) == 1;
               });
}

std::string
Signature::make(const Key &key, const CertificateChain &certificates, const PackageDigests &digests)
{
    ERR_clear_error();
    constexpr unsigned flags = CMS_PARTIAL | CMS_DETACHED | CMS_BINARY | CMS_NOSMIMECAP;
    const Cms cms(CMS_sign(nullptr, nullptr, nullptr, nullptr, flags));
    unsigned char *der = nullptr;
    int size = -1;
    if (cms && addSigner(cms.get(), key, certificates, digests.ofFileSignatures(), flags)
        && CMS_dataFinal(cms.get(), digests.chain(Coverage::Contents)) == 1)
        size = i2d_CMS_ContentInfo(cms.get(), &der);
    if (size < 0) {
        const char *reason = ERR_reason_error_string(ERR_peek_last_error());
        throw Failure(std::string("cannot sign: ") + (reason ? reason : "unknown error"));
    }
    const std::string bytes(reinterpret_cast<char *>(der), static_cast<std::size_t>(size));
    OPENSSL_free(der);
    return bytes;
}

Signature::Signature(const std::string &der)
{
    const auto *start = reinterpret_cast<const unsigned char *>(der.data());
    const unsigned char *end = start;
    m_cms.reset(d2i_CMS_ContentInfo(nullptr, &end, static_cast<long>(der.size())));
    if (!m_cms || end != start + der.size()
        || OBJ_obj2nid(CMS_get0_type(m_cms.get())) != NID_pkcs7_signed)
        return;
    m_certificates.reset(CMS_get1_certs(m_cms.get()));
    CMS_set1_signers_certs(m_cms.get(), nullptr, 0);
    STACK_OF(CMS_SignerInfo) *infos = CMS_get0_SignerInfos(m_cms.get());
    for (int i = 0; i < sk_CMS_SignerInfo_num(infos); ++i) {
        Signer signer{sk_CMS_SignerInfo_value(infos, i)};
        CMS_SignerInfo_get0_algs(signer.info, nullptr, &signer.certificate, nullptr, nullptr);
        m_signers.push_back(signer);
    }
}

bool Signature::hasSigned(const PackageDigests &digests) const
{
    return isReadable() && std::all_of(m_signers.begin(), m_signers.end(), [&](const auto &signer) {
               return signer.hasSigned(digests);
           });
}

DigestKinds digestsOf(const std::vector<Signature> &signatures)
{
    DigestKinds kinds;
    for (const Signature &signature : signatures)
        for (const Signer &signer : signature.signers())
            kinds[signer.coverage()].insert(signer.digest());
    return kinds;
}

Verifier::Verifier(const std::string &rootsFile)
    : m_rootsFile(printable(rootsFile))
    , m_roots(X509_STORE_new())
{
    const FileContents file("root certificate", rootsFile);
    const BioChain bytes(BIO_new_mem_buf(file.bytes(), static_cast<int>(file.size())));
    while (const Certificate root{PEM_read_bio_X509_AUX(bytes.get(), nullptr, nullptr, nullptr)}) {
        X509_STORE_add_cert(m_roots.get(), root.get());
        m_hasRoots = true;
    }
    X509_VERIFY_PARAM_set_auth_level(X509_STORE_get0_param(m_roots.get()), STRENGTH);
}

std::string Verifier::faultOf(const Signature &signature, const PackageDigests &digests) const
{
    if (!m_hasRoots)
        return "no root certificate can be read from " + m_rootsFile;
    if (!signature.isReadable())
        return "it cannot be read";
    for (const Signer &signer : signature.signers()) {
        const std::string fault = faultOf(signer, signature.certificates());
        if (!fault.empty())
            return fault;
    }
    const bool isOver = std::all_of(signature.signers().begin(),
                                    signature.signers().end(),
                                    [&](const Signer &signer) { return signer.isOver(digests); });
    return isOver ? "" : "the package was changed after it was signed";
}

static std::string words(int error)
{
    switch (error) {
    case X509_V_ERR_CERT_HAS_EXPIRED:
        return "its certificate has expired";
    case X509_V_ERR_CERT_NOT_YET_VALID:
        return "its certificate is not valid yet";
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY:
    case X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT:
    case X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN:
        return "its certificate is not issued by a trusted root";
    default:
        return std::string("its certificate is refused: ") + X509_verify_cert_error_string(error);
    }
}

std::string Verifier::faultOf(const Signer &signer, STACK_OF(X509) * certificates) const
{
    const RootsContext context(X509_STORE_CTX_new());
    if (!signer.isCheckable()
        || X509_STORE_CTX_init(context.get(), m_roots.get(), signer.certificate, certificates) != 1)
        return "it cannot be read";
    if (X509_verify_cert(context.get()) != 1)
        return words(X509_STORE_CTX_get_error(context.get()));
    if (!isForSigning(signer.certificate))
        return words(X509_V_ERR_INVALID_PURPOSE);
    if (!isStrong(X509_get0_pubkey(signer.certificate)) || !isStrongDigest(signer.digest()))
        return "its key or its digest is too weak";
    return signer.isGenuine() ? "" : "it cannot be read";
}
