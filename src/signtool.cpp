#include "signtool.h"

#include "passworddialog.h"
#include "runlog.h"

#include <QPointer>

#include <algorithm>
#include <array>

namespace Sealkit::Internal {

SignTool::SignTool(QObject *parent)
    : QObject(parent)
    , m_handler([self = QPointer<SignTool>(this)](const QByteArray &stdOutChunk,
                                                  const QByteArray &stdErrChunk,
                                                  QByteArray &input) {
        return self && self->handleIO(stdOutChunk, stdErrChunk, input);
    })
{
    connect(this, &SignTool::addOutput, this, logOutput);
    connect(this, &SignTool::addError, this, logError);
}

bool SignTool::handleIO(const QByteArray &stdOutChunk,
                        const QByteArray &stdErrChunk,
                        QByteArray &input)
{
    const QPointer<SignTool> self(this);
    return handleIOInternal(stdOutChunk, false, input) && self
           && handleIOInternal(stdErrChunk, true, input);
}

bool SignTool::handleIOInternal(const QByteArray &chunk, bool isError, QByteArray &input)
{
    const QPointer<SignTool> self(this);
    // To split at a regular expression for both line ends would take twice as long.
    const QString text = QString::fromUtf8(chunk).replace(QLatin1Char('\r'), QLatin1Char('\n'));
    const QStringList lines = text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        if (isPasswordReq(line)) {
            bool ok = false;
            const QString password = PasswordDialog::getPassord(line, &ok, m_stopToken);
            if (!self || !ok || password.isEmpty())
                return false;
            input += password.toUtf8() + '\n';
        } else if (isError) {
            emit addError(line);
        } else {
            emit addOutput(line);
        }
        if (!self)
            return false; // a receiver of the line has deleted this object
    }
    return true;
}

bool isPasswordReq(const QString &line)
{
    static constexpr std::array prompts{
        QLatin1String("Enter passphrase for binaries key"),
        QLatin1String("Enter PEM pass phrase"),
        QLatin1String("Verifying - Enter PEM pass phrase"),
        QLatin1String("Enter pass phrase"),
    };
    return std::any_of(prompts.begin(), prompts.end(), [&line](QLatin1String prompt) {
        return line.startsWith(prompt);
    });
}

} // namespace Sealkit::Internal
