#include "toolreason.h"

#include "straywarnings.h"
#include "testrow.h"

using namespace Sealkit::Internal;
using Command::Result;

class ToolReasonTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnStrayWarnings(); }

    void findsTheLineThatHelps_data();
    void findsTheLineThatHelps();
    void alwaysKnowsAReason_data();
    void alwaysKnowsAReason();
};

void ToolReasonTest::findsTheLineThatHelps_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("line");

    const QString progress = ".....+...+..+.........+++++++++++++++++++++*..\r\n.....+.+\r\n";
    addRow("nothing", "", "");
    addRow("progress and prompts alone",
           progress + "Enter PEM pass phrase:\r\nVerifying - Enter PEM pass phrase:\r\n",
           "");
    addRow(
        "two pass phrases that differ",
        progress
            + "Enter PEM pass phrase:\r\nVerifying - Enter PEM pass phrase:\r\nVerify failure\r\n"
              "Error writing key\r\n"
              "40170DF67B7F0000:error:1400006B:UI routines:UI_process:processing error:"
              "../crypto/ui/ui_lib.c:573:while reading strings\r\n",
        "Verify failure");
    addRow("a name that is too long",
           "Error making certificate request\r\n"
           "409765D1527F0000:error:06800097:asn1 encoding routines:ASN1_mbstring_ncopy:string too "
           "long:../crypto/asn1/a_mbstr.c:118:maxsize=64\r\n",
           "string too long");
    const QString cannotRead = "Could not read private key from k.pem";
    const QString unsupported = "\r\n40276523B47F0000:error:1608010C:STORE routines:"
                                "ossl_store_handle_load_result:unsupported:store_result.c:149:\r\n";
    addRow("a key that is none", cannotRead + unsupported, cannotRead);
    addRow("a wrong pass phrase",
           "Enter pass phrase for k.pem:\r\n" + cannotRead + unsupported
               + "40276523B47F0000:error:1C800064:Provider routines:ossl_cipher_unpadblock:bad "
                 "decrypt:ciphercommon_block.c:124:\r\n",
           cannotRead + ": bad decrypt");
    const QString wrong = "rpmsign-external: error: wrong pass phrase for the key: k.pem";
    addRow("a signing tool", "Enter pass phrase for k.pem:\r\n\r\n" + wrong + "\r\n", wrong);
    const QString noKey = "rpmsign-external: error: no key given (-k)";
    addRow("how it is used follows", noKey + "\r\nusage: rpmsign-external sign …\r\n", noKey);
    addRow("words of its own", "a moment\nrefused\n", "refused");
}

void ToolReasonTest::findsTheLineThatHelps()
{
    QFETCH(QString, output);
    QTEST(tellingLine(output), "line");
}

void ToolReasonTest::alwaysKnowsAReason_data()
{
    QTest::addColumn<Result>("result");
    QTest::addColumn<QString>("reason");

    addRow("not started",
           Result{.stdErr = {}, .stdOut = {}, .started = false},
           "The tool could not be started; see the General Messages");
    addRow("declined prompt",
           Result{.crashed = true, .stdErr = {}, .stdOut = "a line\n", .cancelled = true},
           "Cancelled: no pass phrase was given");
    addRow("silent",
           Result{.exitCode = 137, .stdErr = {}, .stdOut = {}},
           "The tool gave no reason; its exit code was 137");
    addRow(
        "told on both channels", Result{.exitCode = 1, .stdErr = "why", .stdOut = "what"}, "why");
}

void ToolReasonTest::alwaysKnowsAReason()
{
    QFETCH(Result, result);
    QTEST(whyFailed(result), "reason");
}

QTEST_GUILESS_MAIN(ToolReasonTest)
#include "tst_toolreason.moc"
