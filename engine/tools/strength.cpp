#include "strength.h"

#include <cstdint>
#include <openssl/x509v3.h>

static constexpr int LEAST_BITS = 2048;
static constexpr int LEAST_CURVE_BITS = 224;
static constexpr int LEAST_DIGEST_SIZE = 28; // in bytes

bool isStrong(EVP_PKEY *key)
{
    switch (EVP_PKEY_get_base_id(key)) {
    case EVP_PKEY_RSA:
    case EVP_PKEY_RSA_PSS:
    case EVP_PKEY_DSA:
        return EVP_PKEY_get_bits(key) >= LEAST_BITS;
    case EVP_PKEY_EC:
        return EVP_PKEY_get_bits(key) >= LEAST_CURVE_BITS;
    default:
        return true;
    }
}

bool isStrongDigest(int digest)
{
    const EVP_MD *md = EVP_get_digestbynid(digest);
    return md && digest != NID_md5_sha1 && EVP_MD_get_size(md) >= LEAST_DIGEST_SIZE;
}

bool isSignedStrongly(X509 *certificate)
{
    int digest = NID_undef;
    return X509_get_extension_flags(certificate) & EXFLAG_SI
           || X509_get_signature_info(certificate, &digest, nullptr, nullptr, nullptr) != 1
           || digest == NID_undef || isStrongDigest(digest);
}

bool isForSigning(X509 *certificate)
{
    constexpr std::uint32_t purposes = XKU_CODE_SIGN | XKU_SMIME | XKU_ANYEKU;
    return (X509_get_key_usage(certificate) & (KU_DIGITAL_SIGNATURE | KU_NON_REPUDIATION)) != 0
           && (X509_get_extended_key_usage(certificate) & purposes) != 0;
}
