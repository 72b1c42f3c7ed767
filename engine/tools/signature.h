#pragma once

#include "handles.h"
#include "keys.h"
#include "package.h"

#include <set>
#include <string>
#include <vector>

/// Who made a signature; there can be several in one.
struct Signer
{
    CMS_SignerInfo *info = nullptr;
    X509 *certificate = nullptr; ///< null when the signature lacks it

    /// Whether libcrypto knows how to check what this signed.
    bool isCheckable() const;
    /// What the signature is meant to cover: without our attribute about the file signatures it is
    /// one over the whole package.
    Coverage coverage() const;
    /// Whether this signed the bytes that the digests are of.
    bool hasSigned(const PackageDigests &digests) const;
    /// Whether the signature is one of the certificate's key, over whichever bytes.
    bool isGenuine() const;
    bool isOver(const PackageDigests &digests) const;
    int digest() const;
};

/// A detached CMS signature (DER).
class Signature
{
public:
    /// Makes one over the contents that the digests are of by the key of the first certificate. The
    /// others help to find the way to a root. Throws a Failure when libcrypto cannot.
    static std::string
    make(const Key &key, const CertificateChain &certificates, const PackageDigests &digests);
    /// The digest that make() needs.
    static int digestFor(const Key &key);

    explicit Signature(const std::string &der);

    /// False when that was no signature.
    bool isReadable() const { return !m_signers.empty(); }
    const std::vector<Signer> &signers() const { return m_signers; }
    /// All certificates in it, which may help to find the way to a root.
    STACK_OF(X509) * certificates() const { return m_certificates.get(); }
    bool hasSigned(const PackageDigests &digests) const;

private:
    struct FreeCertificates
    {
        void operator()(STACK_OF(X509) * certificates) const
        {
            sk_X509_pop_free(certificates, X509_free);
        }
    };

    Cms m_cms;
    std::unique_ptr<STACK_OF(X509), FreeCertificates> m_certificates;
    std::vector<Signer> m_signers;
};

/// All digests that the signers of the signatures have used.
DigestKinds digestsOf(const std::vector<Signature> &signatures);

/// Judges signatures by root certificates.
class Verifier
{
public:
    /// \a rootsFile holds certificates (PEM); nothing else is trusted. Throws a Failure when it
    /// cannot be read.
    explicit Verifier(const std::string &rootsFile);

    /// Why \a signature is no valid one of the package, as the end of a sentence; empty when it is.
    std::string faultOf(const Signature &signature, const PackageDigests &digests) const;

private:
    std::string faultOf(const Signer &signer, STACK_OF(X509) * certificates) const;

    const std::string m_rootsFile;
    Roots m_roots;
    bool m_hasRoots = false;
};
