#include "signaturetext.h"

#include "text.h"

#include <algorithm>
#include <cstdint>
#include <openssl/x509v3.h>
#include <string_view>
#include <vector>

static constexpr std::string_view NONE = "none";
static constexpr std::string_view QUOTED_IN_NAMES = ",+\"\\;";

static std::string nameOf(const ASN1_OBJECT *object)
{
    char name[128] = {};
    OBJ_obj2txt(name, sizeof name, object, 0);
    return name;
}

static std::string valueOf(const X509_NAME_ENTRY *entry)
{
    const ASN1_STRING *string = X509_NAME_ENTRY_get_data(entry);
    unsigned char *bytes = nullptr;
    const int size = ASN1_STRING_to_UTF8(&bytes, string);
    if (size < 0)
        return '#'
               + hexadecimal({reinterpret_cast<const char *>(ASN1_STRING_get0_data(string)),
                              static_cast<std::size_t>(ASN1_STRING_length(string))});
    const std::string value(reinterpret_cast<const char *>(bytes), static_cast<std::size_t>(size));
    OPENSSL_free(bytes);
    return value;
}

static std::string keyOf(const X509_NAME_ENTRY *entry)
{
    const ASN1_OBJECT *object = X509_NAME_ENTRY_get_object(entry);
    const int kind = OBJ_obj2nid(object);
    return kind == NID_undef ? nameOf(object) : OBJ_nid2sn(kind);
}

// As RFC 2253 has it, from the last part to the first, with a blank behind each comma between two
// parts, so that a long name can be wrapped.
static std::string subjectOf(const X509_NAME *name)
{
    std::string text;
    int set = 0;
    for (int i = X509_NAME_entry_count(name) - 1; i >= 0; --i) {
        const X509_NAME_ENTRY *entry = X509_NAME_get_entry(name, i);
        if (!text.empty())
            text += X509_NAME_ENTRY_set(entry) == set ? "+" : ", ";
        set = X509_NAME_ENTRY_set(entry);
        text += keyOf(entry) + '=' + escaped(valueOf(entry), QUOTED_IN_NAMES);
    }
    return text;
}

static std::vector<std::string> unitsOf(const X509_NAME *name)
{
    std::vector<std::string> units;
    for (int i = -1; (i = X509_NAME_get_index_by_NID(name, NID_organizationalUnitName, i)) >= 0;)
        units.push_back(escaped(valueOf(X509_NAME_get_entry(name, i)), {}));
    units.resize(std::max<std::size_t>(units.size(), 2));
    return units;
}

static std::string keyIdOf(X509 *certificate)
{
    const ASN1_OCTET_STRING *id = X509_get0_subject_key_id(certificate);
    if (id && ASN1_STRING_length(id) > 0)
        return hexadecimal({reinterpret_cast<const char *>(ASN1_STRING_get0_data(id)),
                            static_cast<std::size_t>(ASN1_STRING_length(id))});
    char *number = i2s_ASN1_INTEGER(nullptr, X509_get0_serialNumber(certificate));
    const std::string text = number ? number : "";
    OPENSSL_free(number);
    return "serial number " + text;
}

static std::string timeOf(const CMS_SignerInfo *signer)
{
    X509_ATTRIBUTE *attribute =
        CMS_signed_get_attr(signer, CMS_signed_get_attr_by_NID(signer, NID_pkcs9_signingTime, -1));
    const ASN1_TYPE *value = attribute ? X509_ATTRIBUTE_get0_type(attribute, 0) : nullptr;
    const BioChain text(BIO_new(BIO_s_mem()));
    if (!value || (value->type != V_ASN1_UTCTIME && value->type != V_ASN1_GENERALIZEDTIME)
        || ASN1_TIME_print(text.get(), value->value.asn1_string) != 1)
        return {};
    char *bytes = nullptr;
    const long size = BIO_get_mem_data(text.get(), &bytes);
    return {bytes, static_cast<std::size_t>(size)};
}

static std::string algorithmsOf(CMS_SignerInfo *signer)
{
    X509_ALGOR *digest = nullptr;
    X509_ALGOR *signature = nullptr;
    CMS_SignerInfo_get0_algs(signer, nullptr, nullptr, &digest, &signature);
    std::string text;
    for (const X509_ALGOR *algorithm : {signature, digest}) {
        const ASN1_OBJECT *id = nullptr;
        X509_ALGOR_get0(&id, nullptr, nullptr, algorithm);
        text += nameOf(id) + ", ";
    }
    return text;
}

static std::string line(std::string_view what, std::string_view value)
{
    return std::string(what) + ": " + std::string(value.empty() ? NONE : value) + '\n';
}

std::string describe(const Signer &signer, const PackageDigests &package)
{
    const X509_NAME *name =
        signer.certificate ? X509_get_subject_name(signer.certificate) : nullptr;
    const std::string subject = line("Subject", name ? subjectOf(name) : std::string());
    if (!signer.isCheckable())
        return subject + line("Signature", "cannot be checked here");
    if (!signer.hasSigned(package))
        return subject + line("Signature", "not a signature of this package");
    const std::vector<std::string> units = unitsOf(name);
    const std::string time = timeOf(signer.info);
    return subject + line("Group", units[0]) + line("Subgroup", units[1])
           + line("Key ID", keyIdOf(signer.certificate))
           + line("Signature",
                  algorithmsOf(signer.info) + (time.empty() ? std::string(NONE) : time));
}
