#include "certificatenote.h"

#include "certificatesummary.h"
#include "keyfile.h"
#include "notelabel.h"

#include <utils/pathchooser.h>

#include <QFileInfo>

using Utils::PathChooser;

namespace Sealkit::Internal {

static QString pathOf(const PathChooser *chooser)
{
    return chooser ? chooser->filePath().toFSPathString() : QString();
}

static void showKey(NoteLabel *label, const PathChooser *chooser)
{
    const QString path = pathOf(chooser);
    const bool isGood = !QFileInfo(path).isFile() || holdsPrivateKey(path);
    label->setNote(isGood ? QString() : QObject::tr("There is no private key in this file"),
                   NoteLabel::Warning);
}

void followKey(NoteLabel *label, const PathChooser *chooser)
{
    QObject::connect(
        chooser, &PathChooser::textChanged, label, [label, chooser] { showKey(label, chooser); });
    showKey(label, chooser);
}

void showCertificate(NoteLabel *label, const PathChooser *chooser, const PathChooser *keyChooser)
{
    CertificateSummary summary = summarizeCertificate(pathOf(chooser));
    if (belongTogether(pathOf(keyChooser), pathOf(chooser)) == false) {
        summary.text = QObject::tr("It belongs to another key. %1").arg(summary.text);
        summary.isWarning = true;
    }
    label->setNote(summary.text, summary.isWarning ? NoteLabel::Warning : NoteLabel::Information);
}

void followCertificate(NoteLabel *label, const PathChooser *chooser, const PathChooser *keyChooser)
{
    const auto show = [label, chooser, keyChooser] { showCertificate(label, chooser, keyChooser); };
    for (const PathChooser *changing : {chooser, keyChooser}) {
        if (changing)
            QObject::connect(changing, &PathChooser::textChanged, label, show);
    }
    show();
}

} // namespace Sealkit::Internal
