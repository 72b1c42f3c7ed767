#pragma once

namespace Utils {
class PathChooser;
}

namespace Sealkit::Internal {

class NoteLabel;

/// Shows whose certificate \a chooser has chosen, and until when; nothing for any other file.
void showCertificate(NoteLabel *label, const Utils::PathChooser *chooser);
/// From now on, whenever another file is chosen.
void followCertificate(NoteLabel *label, const Utils::PathChooser *chooser);

} // namespace Sealkit::Internal
