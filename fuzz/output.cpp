// A reader of tools' output finds in two chunks what it finds in one chunk with all of the text.
#include "fuzzing.h"

#include "readingtool.h"
#include "signdialog.h"
#include "utils.h"

using namespace Sealkit::Internal;

/// What a back end reads, without line ends.
static QString textRead(const QByteArrayList &chunks)
{
    ReadingTool tool;
    QString text;
    QObject::connect(&tool, &SignTool::addOutput, [&](const QString &line) {
        expect(!line.isEmpty() && !line.contains('\r') && !line.contains('\n'), "one line");
        text += line;
    });
    QByteArray input;
    for (const QByteArray &chunk : chunks)
        expect(tool.handleIO(chunk, {}, input) && input.isEmpty(), "nobody asks for anything");
    return text.remove(QChar::ByteOrderMark); // it counts only where a chunk begins
}

static void checkLines(const QByteArray &first, const QByteArray &second)
{
    QString text = QString::fromUtf8(first + second).replace('\r', '\n');
    const QStringList lines = text.split('\n');
    if (std::any_of(lines.begin(), lines.end(), isPasswordReq))
        return; // it would wait for a user
    text.remove('\n').remove(QChar::ByteOrderMark);
    expect(textRead({first + second}) == text, "no text is lost");
    expect(textRead({first, second}) == text, "no text is lost between chunks");
}

static void checkDumps(const QString &first, const QString &second)
{
    const QString dump = first + second;
    for (const auto group : {&SignGroups::developer, &SignGroups::client})
        expect(signGroups(dump).*group == (signGroups(first).*group || signGroups(second).*group),
               "a dump has the groups of its parts");
    const QString summary = parseDumpForSort(dump);
    expect(summary == parseDumpForSort(first) + parseDumpForSort(second), "parts of a summary");

    const auto blocks = midDumpOutput(first).size() + midDumpOutput(second).size();
    expect(midDumpOutput(dump).size() == blocks, "a dump has the blocks of its parts");
    for (const QString &block : midDumpOutput(dump))
        expect(block.startsWith("Subject") && dump.contains(block), "a block is part of the dump");
}

extern "C" int LLVMFuzzerTestOneInput(const char *data, std::size_t size)
{
    const QByteArray output(data, qsizetype(size));
    const QByteArray half = output.left(output.size() / 2) + '\n';
    checkLines(half, output.mid(half.size() - 1));
    checkDumps(half, output.mid(half.size() - 1));
    return 0;
}
