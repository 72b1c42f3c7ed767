#include "signtool.h"

#include "passworddialog.h"

#include <coreplugin/messagemanager.h>

#include <QPointer>
#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace Sealkit::Internal {

static QStringList splitLines(const QByteArray &chunk)
{
    static const QRegularExpression lineEnd(QStringLiteral("[\r\n]"));
    return QString::fromUtf8(chunk).split(lineEnd, Qt::SkipEmptyParts);
}

SignTool::SignTool(QObject *parent)
    : QObject(parent)
    , m_handler([self = QPointer<SignTool>(this)](const QByteArray &stdOutChunk,
                                                  const QByteArray &stdErrChunk,
                                                  QByteArray &input) {
        return self && self->handleIO(stdOutChunk, stdErrChunk, input);
    })
{
    connect(this, &SignTool::addOutput, this, [](const QString &line) {
        Core::MessageManager::writeSilently(QStringLiteral("[I]\t%1").arg(line));
    });
    connect(this, &SignTool::addError, this, [](const QString &line) {
        Core::MessageManager::writeDisrupting(QStringLiteral("[E]\t%1").arg(line));
    });
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
    const QStringList lines = splitLines(chunk);
    for (const QString &line : lines) {
        if (isPasswordReq(line)) {
            bool ok = false;
            const QString password = PasswordDialog::getPassord(line, &ok);
            if (!self || !ok || password.isEmpty())
                return false;
            input += password.toUtf8() + '\n';
        } else if (isError) {
            emit addError(line);
        } else {
            emit addOutput(line);
        }
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
