#pragma once

#include <veyraos/kilnconstants.h>

#include <QCoreApplication>
#include <QString>

namespace Sealkit::Constants {

// Tools of the build targets
const QString RPMSIGN_EXTERNAL_TOOL = QStringLiteral("rpmsign-external");
const QString CUSTOMER_SIGN_TOOL = QStringLiteral("customer-sign");

// Command templates
const QString RPMSIGN_EXTERNAL_COMMAND =
    RPMSIGN_EXTERNAL_TOOL + QStringLiteral(" sign -k %1 -c %2 ");
const QString SIGN_COMMAND = CUSTOMER_SIGN_TOOL + QStringLiteral(" -b \"%1\" -p \"%2\" -c \"%3\" ");
const QString SIGN_COMMAND_CLIENT_CERT = QStringLiteral("-cl \"%1\" ");
const QString KB2_BUILD_SHELL = QStringLiteral("kb2 -t %1 build-shell ");

// Steps
const char RPMSIGN_EXTERNAL_STEP_ID[] = "Sealkit.RpmSignExternalStep";
const char CUSTOMER_SIGN_STEP_ID[] = "Sealkit.RpmSignStep";

// Default keys of the customer-sign step, below the shared home
const QString DEFAULT_BINARIES_KEY = QStringLiteral("/.kilnsdk/binaries-key.pem");
const QString DEFAULT_PACKAGES_KEY = QStringLiteral("/.kilnsdk/packages-key.pem");
const QString DEFAULT_PACKAGES_CERT = QStringLiteral("/.kilnsdk/packages-cert.pem");
const QString DEFAULT_PACKAGES_CLIENT_CERT = QStringLiteral("/.kilnsdk/packages-client-cert.pem");

// The customer-sign step's map
const char BINARIES_KEY_ID[] = "Sealkit.BinariesKey";
const char PACKAGES_KEY_ID[] = "Sealkit.PackagesKey";
const char PACKAGES_CERT_ID[] = "Sealkit.PackagesCert";
const char PACKAGES_CLIENT_CERT_ID[] = "Sealkit.PackagesClientCert";
const char SIGN_DEBUG_PACKAGE_ID[] = "KilnRpmSign.SignDebugPackage";

const QString EXCLUDE_DEBUG_PACKAGE_PATTERN = QStringLiteral("^((?!debug(info|source)).)*$");

// The rpmsign-external step's map
const char USE_DEFAULT_VALUES_ID[] = "Sealkit.UseDefaultValues";
const char KEY_ID[] = "Sealkit.Key";
const char CERT_ID[] = "Sealkit.Cert";

// Global signing options
const char SIGN_OPTIONS_PAGE_ID[] = "Z.SignOptions";
const QString ENABLE_DEFAULT_SIGN_KEY = QStringLiteral("Sealkit.DefaultSign");
const QString GLOBAL_SIGNKEY_KEY = QStringLiteral("Sealkit.GlobalSignKey");
const QString GLOBAL_SIGNCERT_KEY = QStringLiteral("Sealkit.GlobalSignCert");
const QString USE_DEFAULT_SIGNKEY_KEY = QStringLiteral("Sealkit.UseDefaultSignKey");
const QString USE_DEFAULT_SIGNCERT_KEY = QStringLiteral("Sealkit.UseDefaultSignCert");
const char DEFAULT_SIGNKEY_HISTORY_KEY[] = "Sealkit.HistoryDefaultSignKey";
const char DEFAULT_SIGNCERT_HISTORY_KEY[] = "Sealkit.HistoryDefaultSignCert";

// The regular keys, in the installation and in the workspace
const char PREINSTALL_KEY_NAME[] = "regular_key.pem";
const char PREINSTALL_CERT_NAME[] = "regular_cert.pem";
const QString PREINSTALL_KEY_FOLDER = QStringLiteral("package-signing");
const QString PREINSTALL_KEY_FOLDER_UNDER_WORKSPACE = QStringLiteral(".veyraos-regular-keys");

// The sign dialog's history
const QString SIGN_DATA_HISTORY_TARGET_NAME = QStringLiteral("KilnRpmSign.History.TargetName");
const QString KEY_GENERATION_HISTORY_ENCRYPT =
    QStringLiteral("KilnRpmSign.History.GenerationEncrypt");
// Misspelled from the start; settings are stored under it.
const QString KEY_GENERATION_HISTORY_ALGORYTHM =
    QStringLiteral("KilnRpmSign.History.GenerationAlgorythm");

const QString SIGN_DIALOG_HISTORY_GEOMETRY = QStringLiteral("KilnRpmSign.History.Geometry");

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
const QString PACKAGE_SIGNING_PAGE = QStringLiteral(
    "https://developer.veyraos.example/doc/sdk/app_development/packaging/package_signing");

} // namespace Sealkit::Constants
