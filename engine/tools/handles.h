#pragma once

#include <memory>
#include <openssl/bio.h>
#include <openssl/cms.h>
#include <openssl/evp.h>
#include <openssl/store.h>
#include <openssl/ui.h>
#include <openssl/x509.h>

// libcrypto's objects, each with what frees it.

template<auto FREE>
struct Freeing
{
    template<typename T>
    void operator()(T *object) const
    {
        FREE(object);
    }
};

using BioChain = std::unique_ptr<BIO, Freeing<BIO_free_all>>;
using Certificate = std::unique_ptr<X509, Freeing<X509_free>>;
using Cms = std::unique_ptr<CMS_ContentInfo, Freeing<CMS_ContentInfo_free>>;
using DigestContext = std::unique_ptr<EVP_MD_CTX, Freeing<EVP_MD_CTX_free>>;
using EncryptedKey = std::unique_ptr<X509_SIG, Freeing<X509_SIG_free>>;
using Key = std::unique_ptr<EVP_PKEY, Freeing<EVP_PKEY_free>>;
using KeyContext = std::unique_ptr<EVP_PKEY_CTX, Freeing<EVP_PKEY_CTX_free>>;
using KeyInfo = std::unique_ptr<PKCS8_PRIV_KEY_INFO, Freeing<PKCS8_PRIV_KEY_INFO_free>>;
using Object = std::unique_ptr<ASN1_OBJECT, Freeing<ASN1_OBJECT_free>>;
using Roots = std::unique_ptr<X509_STORE, Freeing<X509_STORE_free>>;
using RootsContext = std::unique_ptr<X509_STORE_CTX, Freeing<X509_STORE_CTX_free>>;
using Store = std::unique_ptr<OSSL_STORE_CTX, Freeing<OSSL_STORE_close>>;
using StoreItem = std::unique_ptr<OSSL_STORE_INFO, Freeing<OSSL_STORE_INFO_free>>;
using Ui = std::unique_ptr<UI, Freeing<UI_free>>;
using UiMethod = std::unique_ptr<UI_METHOD, Freeing<UI_destroy_method>>;
