#pragma once

#include <veyraos/kilnconstants.h>

#include <QCoreApplication>
#include <QString>

namespace Sealkit::Constants {

// Tools of the build targets
const char RPMSIGN_EXTERNAL_TOOL[] = "rpmsign-external";
const char CUSTOMER_SIGN_TOOL[] = "customer-sign";

// Command templates; this plugin composes its commands without them
const char RPMSIGN_EXTERNAL_COMMAND[] = "rpmsign-external sign -k %1 -c %2 ";
const char SIGN_COMMAND[] = "customer-sign -b \"%1\" -p \"%2\" -c \"%3\" ";
const char SIGN_COMMAND_CLIENT_CERT[] = "-cl \"%1\" ";
const char KB2_BUILD_SHELL[] = "kb2 -t %1 build-shell ";

// Steps
const char RPMSIGN_EXTERNAL_STEP_ID[] = "Sealkit.RpmSignExternalStep";
const char CUSTOMER_SIGN_STEP_ID[] = "Sealkit.RpmSignStep";

// Default keys of the customer-sign step, below the shared home
const char DEFAULT_BINARIES_KEY[] = "/.kilnsdk/binaries-key.pem";
const char DEFAULT_PACKAGES_KEY[] = "/.kilnsdk/packages-key.pem";
const char DEFAULT_PACKAGES_CERT[] = "/.kilnsdk/packages-cert.pem";
const char DEFAULT_PACKAGES_CLIENT_CERT[] = "/.kilnsdk/packages-client-cert.pem";

// The customer-sign step's map
const char BINARIES_KEY_ID[] = "Sealkit.BinariesKey";
const char PACKAGES_KEY_ID[] = "Sealkit.PackagesKey";
const char PACKAGES_CERT_ID[] = "Sealkit.PackagesCert";
const char PACKAGES_CLIENT_CERT_ID[] = "Sealkit.PackagesClientCert";
const char SIGN_DEBUG_PACKAGE_ID[] = "KilnRpmSign.SignDebugPackage";

const char EXCLUDE_DEBUG_PACKAGE_PATTERN[] = "^((?!debug(info|source)).)*$";

// The rpmsign-external step's map
const char USE_DEFAULT_VALUES_ID[] = "Sealkit.UseDefaultValues";
const char KEY_ID[] = "Sealkit.Key";
const char CERT_ID[] = "Sealkit.Cert";

// Global signing options
const char SIGN_OPTIONS_PAGE_ID[] = "Z.SignOptions";
const char ENABLE_DEFAULT_SIGN_KEY[] = "Sealkit.DefaultSign";
const char GLOBAL_SIGNKEY_KEY[] = "Sealkit.GlobalSignKey";
const char GLOBAL_SIGNCERT_KEY[] = "Sealkit.GlobalSignCert";
const char USE_DEFAULT_SIGNKEY_KEY[] = "Sealkit.UseDefaultSignKey";
const char USE_DEFAULT_SIGNCERT_KEY[] = "Sealkit.UseDefaultSignCert";
const char DEFAULT_SIGNKEY_HISTORY_KEY[] = "Sealkit.HistoryDefaultSignKey";
const char DEFAULT_SIGNCERT_HISTORY_KEY[] = "Sealkit.HistoryDefaultSignCert";

// The regular keys, in the installation and in the workspace
const char PREINSTALL_KEY_NAME[] = "regular_key.pem";
const char PREINSTALL_CERT_NAME[] = "regular_cert.pem";
const char PREINSTALL_KEY_FOLDER[] = "package-signing";
const char PREINSTALL_KEY_FOLDER_UNDER_WORKSPACE[] = ".veyraos-regular-keys";

// The sign dialog's history
const char SIGN_DATA_HISTORY_TARGET_NAME[] = "KilnRpmSign.History.TargetName";
const char KEY_GENERATION_HISTORY_ENCRYPT[] = "KilnRpmSign.History.GenerationEncrypt";
// Misspelled from the start; settings are stored under it.
const char KEY_GENERATION_HISTORY_ALGORYTHM[] = "KilnRpmSign.History.GenerationAlgorythm";

const char SIGN_DIALOG_HISTORY_GEOMETRY[] = "KilnRpmSign.History.Geometry";

// The sign dialog's completers
const char KEY_GENERATION_COMPLETER_CSR[] = "KilnRpmSign.Data.Completer.GeneratedCsr";
const char KEY_GENERATION_COMPLETER_KEY[] = "KilnRpmSign.Data.Completer.GeneratedKey";
const char SIGN_DATA_RPM_PACKAGE_COMPLETER_KEY[] = "KilnRpmSign.Data.Completer.RpmPackage";
const char SIGN_DATA_DEVELOPER_KEY_COMPLETER_KEY[] = "KilnRpmSign.Data.Completer.DeveloperKey";
const char SIGN_DATA_DEVELOPER_CERTIFICATE_COMPLETER_KEY[] =
    "KilnRpmSign.Data.Completer.DeveloperCertificate";
const char SIGN_DATA_CA_CERTIFICATE_COMPLETER_KEY[] = "KilnRpmSign.Data.Completer.CaCertificate";
const char SIGN_DATA_CLIENT_KEY_COMPLETER_KEY[] = "KilnRpmSign.Data.Completer.ClientKey";
const char SIGN_DATA_CLIENT_CERTIFICATE_COMPLETER_KEY[] =
    "KilnRpmSign.Data.Completer.ClientCertificate";
const char SIGN_DATA_BINARY_KEY_COMPLETER_KEY[] = "KilnRpmSign.Data.Completer.BinaryKey";

// Path choosers
const char SIGN_DATA_CERT_PLACEHOLDERTEXT[] =
    QT_TRANSLATE_NOOP("Sealkit::Constants", "Select certificate (*.pem)");
const char SIGN_DATA_KEY_PLACEHOLDERTEXT[] =
    QT_TRANSLATE_NOOP("Sealkit::Constants", "Select key file (*.pem)");
const char SIGN_DATA_RPM_PROMPT_DIALOG_TITLE[] =
    QT_TRANSLATE_NOOP("Sealkit::Constants", "Select RPM package");
const char SIGN_DATA_RPM_PROMPT_DIALOG_FILTER[] =
    QT_TRANSLATE_NOOP("Sealkit::Constants", "RPM package (*.rpm)");
const char SIGN_DATA_PEM_PROMPT_DIALOG_TITLE[] =
    QT_TRANSLATE_NOOP("Sealkit::Constants", "Select Privacy-Enhanced Mail container");
const char SIGN_DATA_PEM_PROMPT_DIALOG_FILTER[] =
    QT_TRANSLATE_NOOP("Sealkit::Constants", "Privacy-Enhanced Mail container (*.pem)");

/// One of the path choosers' texts in the user's language.
inline QString translated(const char *text)
{
    return QCoreApplication::translate("Sealkit::Constants", text);
}

const char SIGN_DIALOG_ACTION_ID[] = "Sealkit.SignDialog";

// Defined by the host plugin
using Kiln::Constants::KILN_DEVICE_TYPE;
using Kiln::Constants::KILN_OPTIONS_CATEGORY;
using Kiln::Constants::KILN_TOOLS_MENU;

// The read-more link of the signature notes, and the dialog's help
/// Beside the folder of the IDE's resources.
const char USER_GUIDE[] = "../doc/qtcreator/sealkit/user-guide.html";
const char PACKAGE_SIGNING_PAGE[] =
    "https://developer.veyraos.example/doc/sdk/app_development/packaging/package_signing";

} // namespace Sealkit::Constants
