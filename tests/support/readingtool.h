#pragma once

#include "signtool.h"

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

    Result run(const QStringList &commandLine) { return SignTool::run(this, commandLine); }

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
