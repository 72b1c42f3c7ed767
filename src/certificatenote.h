#pragma once

namespace Utils {
class PathChooser;
}

namespace Sealkit::Internal {

class NoteLabel;

/// Says when there is no private key in the file that \a chooser has chosen; now, and again
/// whenever the user chooses another file.
void followKey(NoteLabel *label, const Utils::PathChooser *chooser);

/// Shows whose certificate \a chooser has chosen, and until when; also that it belongs to another
/// key than \a keyChooser has chosen, if that is given and can be told.
void showCertificate(NoteLabel *label,
                     const Utils::PathChooser *chooser,
                     const Utils::PathChooser *keyChooser = nullptr);
/// Shows it now, and again whenever the user chooses another file.
void followCertificate(NoteLabel *label,
                       const Utils::PathChooser *chooser,
                       const Utils::PathChooser *keyChooser = nullptr);

} // namespace Sealkit::Internal
