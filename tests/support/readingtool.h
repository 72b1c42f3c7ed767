#pragma once

#include "signtool.h"

#include <array>

/// A back end of which only the handler of its runs matters.
class ReadingTool : public Sealkit::Internal::SignTool
{
public:
    using Result = Sealkit::Internal::Command::Result;
    using SignData = Sealkit::Internal::SignData;
    using KeyGenerationData = Sealkit::Internal::KeyGenerationData;

    ReadingTool()
        : SignTool(nullptr)
    {
    }

    Result run(const QStringList &commandLine)
    {
        return Sealkit::Internal::Command::exec(m_handler, commandLine);
    }

    Result addSignature(const QString &, const QStringList &, const SignData &) override
    {
        return {};
    }
    Result removeSignature(const QString &, const QStringList &) override { return {}; }
    Result verifySignature(const QString &, const QStringList &, const SignData &) override
    {
        return {};
    }
    Result dumpSignature(const QString &, const QStringList &) override { return {}; }
    Result generateRequest(const QString &, const KeyGenerationData &) override { return {}; }
};

/// What the tool should make of a chunk, put as plainly as can be: each chunk is decoded and cut by
/// itself.
inline QStringList plainLines(const QByteArray &chunk)
{
    QStringList lines{QString()};
    for (const QChar character : QString::fromUtf8(chunk)) {
        if (character == u'\n' || character == u'\r')
            lines << QString();
        else
            lines.last() += character;
    }
    lines.removeAll(QString());
    return lines;
}

/// Whether the tool should take a line for a prompt.
inline bool isPlainPrompt(const QString &line)
{
    static const std::array<QString, 4> prompts{"Enter passphrase for binaries key",
                                                "Enter PEM pass phrase",
                                                "Verifying - Enter PEM pass phrase",
                                                "Enter pass phrase"};
    return std::any_of(prompts.begin(), prompts.end(), [&line](const QString &prompt) {
        return line.left(prompt.size()) == prompt;
    });
}
