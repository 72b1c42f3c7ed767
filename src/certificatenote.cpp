#include "certificatenote.h"

#include "certificatesummary.h"
#include "notelabel.h"

#include <utils/pathchooser.h>

namespace Sealkit::Internal {

void showCertificate(NoteLabel *label, const Utils::PathChooser *chooser)
{
    const CertificateSummary summary = summarizeCertificate(chooser->filePath().toFSPathString());
    label->setNote(summary.text, summary.isWarning ? NoteLabel::Warning : NoteLabel::Information);
}

void followCertificate(NoteLabel *label, const Utils::PathChooser *chooser)
{
    QObject::connect(chooser, &Utils::PathChooser::textChanged, label, [label, chooser] {
        showCertificate(label, chooser);
    });
    showCertificate(label, chooser);
}

} // namespace Sealkit::Internal
