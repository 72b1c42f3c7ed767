#pragma once

#include "signtool.h"

namespace Sealkit::Internal {

/// Drives rpmsign-external, and openssl for requests. Takes its input as it is; see
/// SignData::isValid.
class RpmsignExternal : public SignTool
{
    Q_OBJECT

public:
    explicit RpmsignExternal(QObject *parent);

    /// Signs with the key, and after success once more with the client key if that and its
    /// certificate are given. Packages can thus carry the first signature after a failure.
    Command::Result
    addSignature(const QString &target, const QStringList &packages, const SignData &data) override;
    Command::Result removeSignature(const QString &target, const QStringList &packages) override;
    Command::Result verifySignature(const QString &target,
                                    const QStringList &packages,
                                    const SignData &data) override;
    Command::Result dumpSignature(const QString &target, const QStringList &packages) override;
    /// Makes the key unless its file exists, then the request.
    Command::Result generateRequest(const QString &target, const KeyGenerationData &data) override;

    /// A run cannot be interrupted from here.
    void cancel() {}
};

} // namespace Sealkit::Internal
