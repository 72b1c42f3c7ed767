#pragma once

#include <utils/filepath.h>

#include <QFileInfo>
#include <QStringList>

namespace Sealkit::Internal {

class CustomerSealkit;
class RpmsignExternal;

/// The keys and certificates of a sign or verify run: host paths as the user chose them, empty when
/// not given.
struct SignData
{
    QString binariesKey;       ///< customer-sign
    QString clientKey;         ///< rpmsign-external: of the second signature
    QString clientCertificate; ///< of the second signature
    QString certificate;       ///< of the first signature
    QString key;               ///< of the first signature
    QString rootCertificate;   ///< what to verify against

    /// Whether back end \a Tool can sign with this: what it needs is given and lies in
    /// \a workspace, the only folder that tools in the build engine see. Otherwise \a error is a
    /// text for the user.
    template<class Tool>
    bool isValid(const Utils::FilePath &workspace, QString *error) const;

    friend bool operator==(const SignData &, const SignData &) = default;
};

template<>
bool SignData::isValid<RpmsignExternal>(const Utils::FilePath &workspace, QString *error) const;
template<>
bool SignData::isValid<CustomerSealkit>(const Utils::FilePath &workspace, QString *error) const;

enum KeyAlgorithm : int { RSA = 0, GOST = 1 };

/// A certificate signing request to make, and the key that it is made with.
struct KeyGenerationData
{
    QString companyName;           ///< the common name of the request's subject
    Utils::FilePath requestPath;   ///< where the request goes
    Utils::FilePath auxiliaryPath; ///< for others to use; the back ends do not read it
    bool encrypt = false;          ///< protect a new key with a pass phrase
    Utils::FilePath keyPath;       ///< a new key is made when there is no such file
    KeyAlgorithm algorithm = RSA;  ///< of a new key

    /// Writes the configuration of a request for \a companyName into the first build engine's
    /// workspace, under a name made of the time. The caller removes the file. On failure the result
    /// is empty and \a error is a text for the user.
    static QFileInfo generateCsrConfig(const QString &companyName, QString *error);

    friend bool operator==(const KeyGenerationData &, const KeyGenerationData &) = default;
};

/// The command line that makes the key; empty for an unknown algorithm.
QStringList getKeyGenerationComand(const QString &target, const KeyGenerationData &data);

} // namespace Sealkit::Internal
