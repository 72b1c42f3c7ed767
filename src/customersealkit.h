#pragma once

#include "signtool.h"

namespace Sealkit::Internal {

/// Signs with customer-sign; what that cannot do is done with nxvcert-cli. Takes its input as it
/// is; see SignData::isValid.
class CustomerSealkit : public SignTool
{
    Q_OBJECT

public:
    explicit CustomerSealkit(QObject *parent = nullptr);

    Command::Result
    addSignature(const QString &target, const QStringList &packages, const SignData &data) override;
    Command::Result removeSignature(const QString &target, const QStringList &packages) override;
    Command::Result verifySignature(const QString &target,
                                    const QStringList &packages,
                                    const SignData &data) override;
    Command::Result dumpSignature(const QString &target, const QStringList &packages) override;
    /// Not offered: runs nothing and yields exit code -1.
    Command::Result generateRequest(const QString &target, const KeyGenerationData &data) override;

public slots:
    /// Does nothing: a run cannot be interrupted from here.
    void cancel() {}

signals:
    void needCancel(); ///< for others to use; this plugin neither emits nor connects it
};

} // namespace Sealkit::Internal
