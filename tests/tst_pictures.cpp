#include "files.h"
#include "straywarnings.h"
#include "temporarysdk.h"

#include <QTest>
#include <QtWidgets>

// A window without a text has some ten, for its frames and shades.
constexpr int FEWEST_COLOURS = 50;

/// The pictures of the documentation: the program can still take each of them, and the pages show
/// each.
class PicturesTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnStrayWarnings(); }
    void showSomethingAndAreShown();
};

static QStringList picturesIn(const QString &folder)
{
    return QDir(folder).entryList({"*.png"}, QDir::Files, QDir::Name);
}

void PicturesTest::showSomethingAndAreShown()
{
    const TemporarySdk sdk;
    const QString folder = sdk.path() + "/pictures";
    const QStringList arguments{"--settings",
                                sdk.path() + "/settings",
                                "--sdk",
                                sdk.path(),
                                "--pictures",
                                folder,
                                sdk.workspace() + "/hello-veyra"};
    QCOMPARE(QProcess::execute(WORKBENCH_EXECUTABLE, arguments), 0);
    for (const QString &name : picturesIn(folder)) {
        const QImage image(folder + '/' + name);
        QVERIFY2(image.width() >= 300 && image.width() <= 1200, qPrintable(name));
        QVERIFY2(image.height() >= 80 && image.height() <= 900, qPrintable(name));
        const int colours = image.convertToFormat(QImage::Format_Indexed8).colorCount();
        QVERIFY2(colours >= FEWEST_COLOURS, qPrintable(name));
    }

    static const QRegularExpression picture(R"(!\[[^\]]+\]\((?:docs/)?images/([^)]+)\))");
    const QByteArray pages =
        readFile(PROJECT "/README.md") + readFile(PROJECT "/docs/user-guide.md");
    QStringList shown;
    for (auto matches = picture.globalMatch(QString::fromUtf8(pages)); matches.hasNext();)
        shown << matches.next().captured(1);
    shown.sort();
    shown.removeDuplicates();
    QCOMPARE(shown, picturesIn(PROJECT "/docs/images"));
    shown.removeIf([](const QString &name) { return name.startsWith("ide-"); }); // not taken here
    QCOMPARE(shown, picturesIn(folder));
}

QTEST_MAIN(PicturesTest)
#include "tst_pictures.moc"
