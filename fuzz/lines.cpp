#include "fuzzing.h"

#include "readingtool.h"

using namespace Sealkit::Internal;

/// The first byte tells where standard output ends and standard error begins.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray chunks = bytes(data + 1, size - 1);
    const QByteArray out = chunks.left(data[0]);
    const QByteArray err = chunks.mid(data[0]);
    const QStringList outLines = plainLines(out);
    const QStringList errLines = plainLines(err);

    bool waitsForUser = false;
    for (const QString &line : outLines + errLines) {
        expectEqual(isPasswordReq(line), isPlainPrompt(line), "only prompts are prompts");
        waitsForUser |= isPlainPrompt(line);
    }
    if (waitsForUser)
        return 0;

    ReadingTool tool;
    QStringList seenOut;
    QStringList seenErr;
    QObject::connect(&tool, &SignTool::addOutput, [&](const QString &line) {
        expect(seenErr.isEmpty(), "standard output comes first");
        seenOut << line;
    });
    QObject::connect(&tool, &SignTool::addError, [&](const QString &line) { seenErr << line; });

    QByteArray input;
    expect(tool.handleIO(out, err, input), "the tool goes on");
    expect(input.isEmpty(), "nobody answers where nobody asked");
    expectEqual(seenOut, outLines, "lines of standard output");
    expectEqual(seenErr, errLines, "lines of standard error");
    return 0;
}
