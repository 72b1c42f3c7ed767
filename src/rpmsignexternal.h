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

    /// Signs with the key. If that succeeds and there is a client key with a certificate, signs
    /// again with the client key; when only this fails, the packages keep the first signature.
    Command::Result
    addSignature(const QString &target, const QStringList &packages, const SignData &data) override;
    Command::Result removeSignature(const QString &target, const QStringList &packages) override;
    Command::Result verifySignature(const QString &target,
                                    const QStringList &packages,
                                    const SignData &data) override;
    Command::Result dumpSignature(const QString &target, const QStringList &packages) override;
    /// Makes the key unless its file exists, then the request.
    Command::Result generateRequest(const QString &target, const KeyGenerationData &data) override;

    /// Does nothing: a run cannot be interrupted from here.
    void cancel() {}
};

} // namespace Sealkit::Internal
