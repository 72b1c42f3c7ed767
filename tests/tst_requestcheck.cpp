#include "requestcheck.h"

#include "files.h"
#include "signdata.h"
#include "straywarnings.h"
#include "testrow.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include <unistd.h>

using namespace Sealkit::Internal;
using Utils::FilePath;

class RequestCheckTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnStrayWarnings(); }

    void refusesNamesThatWouldChange_data();
    void refusesNamesThatWouldChange();
    void sparesKeys_data();
    void sparesKeys();

private:
    QString path(const QString &name) const { return m_folder.filePath(name); }

    QTemporaryDir m_folder;
};

void RequestCheckTest::refusesNamesThatWouldChange_data()
{
    QTest::addColumn<QString>("company");
    QTest::addColumn<QString>("problem");

    const auto contains = [](const char *name, const QString &company, const QString &sign) {
        addRow(name, company, "Company name cannot contain " + sign);
    };
    contains("quotes", "The \"Company\"", "\"");
    contains("apostrophe", "O'Neil", "'");
    contains("grave accent", "a`b", "`");
    contains("comment", "Shop #1", "#");
    contains("variable", "Cash $ Carry", "$");
    contains("backslash", "A\\B", "\\");
    addRow("blank first", " A", "Company name cannot begin or end with a blank");
    addRow("tabulator last", "A\t", "Company name cannot begin or end with a blank");
    addRow("two lines", "A\nO=B", "Company name cannot have more than one line");
    const QString tooLong = "Company name cannot have more than 64 characters";
    addRow("65 characters", QString(65, 'x'), tooLong);
    addRow("64 characters of two units", QString("😀").repeated(64), QString());
    addRow("other signs", "A=B, C/D; E+F <%COMPANY_NAME%> 1 @{2}", QString());
}

void RequestCheckTest::refusesNamesThatWouldChange()
{
    QFETCH(QString, company);
    KeyGenerationData request;
    request.companyName = company;
    request.keyPath = FilePath::fromString(path("key.pem"));
    request.requestPath = FilePath::fromString(path("request.pem"));
    QTEST(whyNoRequest(request), "problem");
}

void RequestCheckTest::sparesKeys_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("request");
    QTest::addColumn<QString>("problem");

    const QDir folder(m_folder.path());
    QVERIFY(folder.mkdir("sub"));
    writeFile(path("there.pem"), "some text\n");
    QVERIFY(QFile::link("there.pem", path("link.pem")));
    QVERIFY(QFile::link("new.pem", path("dangling.pem")));
    QVERIFY(QFile::link("sub", path("sublink")));
    QCOMPARE(::link(qPrintable(path("there.pem")), qPrintable(path("hard.pem"))), 0);
    writeFile(path("request.pem"), "-----BEGIN CERTIFICATE REQUEST-----\n");

    const auto openssl = [this](const QString &words) {
        QCOMPARE(QProcess::execute("openssl", words.arg(m_folder.path() + '/').split(' ')), 0);
    };
    const QString key = "genpkey -quiet -algorithm rsa -pkeyopt rsa_keygen_bits:1024 -out %1";
    openssl(key + "pem.key");
    openssl(key + "der.key -outform DER");
    const QString pass = " -passin pass:demo -passout pass:demo";
    openssl("rsa -in %1pem.key -traditional -outform DER -out %1traditional.key");
    openssl("pkcs8 -topk8 -in %1pem.key -outform DER -out %1encrypted.key" + pass);
    openssl("req -x509 -new -key %1pem.key -subj /CN=x -out %1cert.pem");
    openssl("x509 -in %1cert.pem -outform DER -out %1cert.der");
    openssl("req -new -key %1pem.key -subj /CN=x -outform DER -out %1request.der");
    openssl("pkcs12 -export -inkey %1pem.key -in %1cert.pem -out %1container.p12" + pass);

    const QString same = "Key and request cannot be the same file";
    addRow("same path", "new.pem", "new.pem", same);
    addRow("a detour", "new.pem", "sub/../new.pem", same);
    addRow("a linked folder", "sub/new.pem", "sublink/new.pem", same);
    addRow("a link", "there.pem", "link.pem", same);
    addRow("a link to what is not there yet", "new.pem", "dangling.pem", same);
    addRow("a hard link", "there.pem", "hard.pem", same);
    for (const QString name :
         {"pem.key", "der.key", "traditional.key", "encrypted.key", "container.p12"}) {
        addRow(qPrintable(name),
               "new.pem",
               name,
               "The request would overwrite the private key in " + path(name));
    }
    for (const QString name : {"request.pem", "request.der", "cert.der", "there.pem", "none.pem"})
        addRow(qPrintable(name), "new.pem", name, QString());
}

void RequestCheckTest::sparesKeys()
{
    QFETCH(QString, key);
    QFETCH(QString, request);
    KeyGenerationData data;
    data.companyName = "Company";
    data.keyPath = FilePath::fromString(path(key));
    data.requestPath = FilePath::fromString(path(request));
    QTEST(whyNoRequest(data), "problem");
}

QTEST_GUILESS_MAIN(RequestCheckTest)
#include "tst_requestcheck.moc"
