#include "straywarnings.h"
#include "temporarysdk.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTest>

constexpr int TIMEOUT = 120'000;
// A window without a text has some ten, for its frames and shades.
constexpr int FEWEST_COLOURS = 50;

/// The pictures of the documentation: that the program can still take them, and that the pages show
/// those that it takes.
class PicturesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { failOnStrayWarnings(); }
    void showSomething();
    void areThoseThatThePagesShow();
    void needOneProject();

private:
    int takePictures(const QStringList &projects);

    TemporarySdk m_sdk;
    QTemporaryDir m_folder;
    QString m_errors;
};

// The exit code.
int PicturesTest::takePictures(const QStringList &projects)
{
    QProcess workbench;
    workbench.start(WORKBENCH_EXECUTABLE,
                    QStringList{"--settings",
                                m_folder.filePath("settings"),
                                "--sdk",
                                m_sdk.path(),
                                "--pictures",
                                m_folder.filePath("pictures")}
                        + projects);
    if (!workbench.waitForFinished(TIMEOUT))
        workbench.kill();
    m_errors = QString::fromUtf8(workbench.readAllStandardError());
    return workbench.exitStatus() == QProcess::NormalExit ? workbench.exitCode() : -1;
}

static QStringList picturesIn(const QString &folder)
{
    return QDir(folder).entryList({"*.png"}, QDir::Files, QDir::Name);
}

static int colours(const QImage &image)
{
    QSet<QRgb> found;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            found << image.pixel(x, y);
    }
    return int(found.size());
}

void PicturesTest::initTestCase()
{
    QVERIFY2(takePictures({m_sdk.workspace() + "/hello-veyra"}) == 0, qPrintable(m_errors));
}

void PicturesTest::showSomething()
{
    const QStringList names = picturesIn(m_folder.filePath("pictures"));
    QVERIFY(!names.isEmpty());
    for (const QString &name : names) {
        const QImage image(m_folder.filePath("pictures/" + name));
        QVERIFY2(image.width() >= 300 && image.width() <= 1200, qPrintable(name));
        QVERIFY2(image.height() >= 80 && image.height() <= 900, qPrintable(name));
        QVERIFY2(colours(image) >= FEWEST_COLOURS, qPrintable(name));
    }
}

void PicturesTest::areThoseThatThePagesShow()
{
    static const QRegularExpression picture(R"(!\[[^\]]+\]\((?:docs/)?images/([^)]+)\))");
    QSet<QString> shown;
    for (const QString page : {"/README.md", "/docs/user-guide.md"}) {
        QFile file(PROJECT + page);
        QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(page));
        const QString text = QString::fromUtf8(file.readAll());
        for (auto matches = picture.globalMatch(text); matches.hasNext();)
            shown << matches.next().captured(1);
    }
    QStringList names(shown.begin(), shown.end());
    names.sort();
    QCOMPARE(names, picturesIn(PROJECT "/docs/images"));
    names.removeIf([](const QString &name) { return name.startsWith("ide-"); }); // not taken here
    QCOMPARE(names, picturesIn(m_folder.filePath("pictures")));
}

void PicturesTest::needOneProject()
{
    QCOMPARE(takePictures({}), 2);
    QCOMPARE(takePictures({"one", "two"}), 2);
    QCOMPARE(takePictures({m_folder.path()}), 1); // a folder that is no project
}

QTEST_MAIN(PicturesTest)
#include "tst_pictures.moc"
