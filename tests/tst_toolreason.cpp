#include "toolreason.h"

#include "straywarnings.h"
#include "testrow.h"

using namespace Sealkit::Internal;
using Command::Result;

class ToolReasonTest : public QObject
{
    Q_OBJECT

private slots:
    void alwaysKnowsAReason_data();
    void alwaysKnowsAReason();
};

void ToolReasonTest::alwaysKnowsAReason_data()
{
    addColumns<Result, QString>("result", "reason");

    addRow("not started",
           Result{.stdErr = {}, .stdOut = {}, .started = false},
           "The tool could not be started; see the General Messages");
    const auto cancelled = [](const char *name, Command::Cancellation why, const char *reason) {
        addRow(name,
               Result{.crashed = true, .stdErr = {}, .stdOut = "a line\n", .cancelled = why},
               QString(reason));
    };
    cancelled("declined prompt", Command::PromptDeclined, "Cancelled: no pass phrase was given");
    cancelled("stopped", Command::StoppedByUser, "Stopped by the user");
    cancelled("closing", Command::IdeClosing, "Stopped: the IDE closes");
    cancelled("deleted",
              Command::ToolObjectGone,
              "Stopped: the step or dialog that started the tool is gone");
    addRow(
        "told on both channels", Result{.exitCode = 1, .stdErr = "why", .stdOut = "what"}, "why");

    const auto says = [](const char *name, const QByteArray &output, const QByteArray &reason) {
        addRow(name, Result{.exitCode = 7, .stdErr = {}, .stdOut = output}, QString(reason));
    };
    const QByteArray prompts = ".....+...+..+.........+++++++++++++++++++++*..\r\n.....+.+\r\n"
                               "Enter PEM pass phrase:\r\nVerifying - Enter PEM pass phrase:\r\n";
    says("progress and prompts alone", prompts, "The tool gave no reason; its exit code was 7");
    says("two pass phrases that differ",
         prompts
             + "Verify failure\r\nError writing key\r\n"
               "40170DF67B7F0000:error:1400006B:UI routines:UI_process:processing error:"
               "../crypto/ui/ui_lib.c:573:while reading strings\r\n",
         "The two pass phrases differ (Verify failure)");
    says("a name that is too long",
         "Error making certificate request\r\n"
         "409765D1527F0000:error:06800097:asn1 encoding routines:ASN1_mbstring_ncopy:string too "
         "long:../crypto/asn1/a_mbstr.c:118:maxsize=64\r\n",
         "string too long");
    const QByteArray key = "Could not read private key from k.pem";
    const QByteArray layer = "\r\n40276523B47F0000:error:1608010C:STORE routines:"
                             "ossl_store_handle_load_result:unsupported:store_result.c:149:\r\n";
    const QByteArray decrypt = "40276523B47F0000:error:1C800064:Provider routines:"
                               "ossl_cipher_unpadblock:bad decrypt:ciphercommon_block.c:124:\r\n";
    says("a key that is none", key + layer, key);
    says("a wrong pass phrase", key + layer + decrypt, key + ": bad decrypt");
    const QByteArray error = "rpmsign-external: error: no key given (-k)";
    says("how it is used follows", error + "\r\nusage: rpmsign-external sign …\r\n", error);
    says("words of its own", "a moment\nrefused\n", "refused");
}

void ToolReasonTest::alwaysKnowsAReason()
{
    failOnStrayWarnings();
    QFETCH(Result, result);
    QTEST(whyFailed(result), "reason");
}

QTEST_GUILESS_MAIN(ToolReasonTest)
#include "tst_toolreason.moc"
