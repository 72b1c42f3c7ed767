#pragma once

namespace Utils {
class PathChooser;
}

namespace Sealkit::Internal {

class NoteLabel;

/// Shows whose certificate \a chooser has chosen, and until when; nothing for any other file.
void showCertificate(NoteLabel *label, const Utils::PathChooser *chooser);
/// Shows it now, and again whenever the user chooses another file.
void followCertificate(NoteLabel *label, const Utils::PathChooser *chooser);

} // namespace Sealkit::Internal
