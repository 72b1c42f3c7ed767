#include "toolreason.h"

#include "signtool.h"

#include <QObject>
#include <QRegularExpression>

#include <algorithm>

namespace Sealkit::Internal {

static bool isProgress(const QString &line)
{
    return std::all_of(line.begin(), line.end(), [](QChar character) {
        return QLatin1String(".+*-").contains(character);
    });
}

QStringList tellingLines(const QString &output)
{
    static const QRegularExpression lineEnd(QStringLiteral("[\r\n]"));
    QStringList lines;
    for (const QString &part : output.split(lineEnd, Qt::SkipEmptyParts)) {
        const QString line = part.trimmed();
        if (!isProgress(line) && !isPasswordReq(line))
            lines << line;
    }
    return lines;
}

// "4097…:error:06800097:asn1 encoding routines:ASN1_mbstring_ncopy:string too long:…" gives "string
// too long"; any other line gives nothing.
static QString opensslReason(const QString &line)
{
    static const QRegularExpression pattern(
        QStringLiteral("^[0-9A-F]+:error:[0-9A-F]+:[^:]*:[^:]*:([^:]+)"));
    return pattern.match(line).captured(1);
}

/// What openssl means by a few words at its prompts for a new key; empty for all others.
static QString ownWordsFor(const QString &words)
{
    if (words == QLatin1String("Verify failure"))
        return QObject::tr("The two pass phrases differ (Verify failure)");
    if (words == QLatin1String("result too small") || words == QLatin1String("result too large"))
        return QObject::tr("A pass phrase has 4 to 1024 bytes (%1)").arg(words);
    return {};
}

/// openssl first says what it could not do, in a general line ("Error making certificate request")
/// or in a specific one, and then prints an error code and a reason for each of its layers.
static QString tellingLineOfOpenssl(const QStringList &lines, const QStringList &reasons)
{
    const auto isWords = [](const QString &line) {
        return opensslReason(line).isEmpty() && !line.startsWith(QLatin1String("Error "));
    };
    const auto found = std::find_if(lines.begin(), lines.end(), isWords);
    const QString words = found == lines.end() ? reasons.first() : *found;
    if (const QString ownWords = ownWordsFor(words); !ownWords.isEmpty())
        return ownWords;
    const QString wrongPassPhrase = QStringLiteral("bad decrypt");
    return found != lines.end() && reasons.contains(wrongPassPhrase)
               ? words + QLatin1String(": ") + wrongPassPhrase
               : words;
}

QString tellingLine(const QString &output)
{
    const QStringList lines = tellingLines(output);
    QStringList reasons;
    for (const QString &line : lines)
        reasons << opensslReason(line);
    reasons.removeAll(QString());
    if (!reasons.isEmpty())
        return tellingLineOfOpenssl(lines, reasons);

    // Lines on how the tool is used may follow the error.
    const QStringList errors = lines.filter(QStringLiteral("error"), Qt::CaseInsensitive);
    if (!errors.isEmpty())
        return errors.last();
    return lines.isEmpty() ? QString() : lines.last();
}

static QString whyCancelled(Command::Cancellation cancelled)
{
    switch (cancelled) {
    case Command::PromptDeclined:
        return QObject::tr("Cancelled: no pass phrase was given");
    case Command::StoppedByUser:
        return QObject::tr("Stopped by the user");
    case Command::IdeClosing:
        return QObject::tr("Stopped: the IDE closes");
    case Command::ToolObjectGone:
        return QObject::tr("Stopped: the step or dialog that started the tool is gone");
    case Command::NotCancelled:
        break;
    }
    return {};
}

QString whyFailed(const Command::Result &result)
{
    if (result.cancelled)
        return whyCancelled(result.cancelled);
    if (!result.started)
        return QObject::tr("The tool could not be started; see the General Messages");
    const QString line = tellingLine(QString::fromUtf8(result.stdOut + '\n' + result.stdErr));
    return line.isEmpty()
               ? QObject::tr("The tool gave no reason; its exit code was %1").arg(result.exitCode)
               : line;
}

} // namespace Sealkit::Internal
