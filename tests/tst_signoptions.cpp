#include "rpmsignexternalstep.h"
#include "settingsscope.h"
#include "signoptionspage.h"

#include <brisk/buildengine.h>
#include <brisk/sdk.h>
#include <projectexplorer/deployconfiguration.h>
#include <projectexplorer/kit.h>
#include <projectexplorer/kitaspects.h>
#include <projectexplorer/project.h>
#include <projectexplorer/target.h>
#include <utils/pathchooser.h>

#include <QAbstractItemModel>
#include <QCheckBox>
#include <QComboBox>
#include <QCompleter>
#include <QDir>
#include <QSettings>
#include <QTest>

using namespace ProjectExplorer;
using Sealkit::Internal::RpmsignExternalStep;
using Sealkit::Internal::SignOptionsPage;
using Sealkit::Internal::StepKeys;
using Utils::FilePath;
using Utils::PathChooser;

static void writeFile(const QString &path, const QByteArray &contents = "PEM\n")
{
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    QVERIFY(file.open(QFile::WriteOnly));
    QCOMPARE(file.write(contents), contents.size());
}

/// The page's widget as a person has it on the screen.
class OpenPage
{
public:
    explicit OpenPage(SignOptionsPage &page)
        : m_widget(page.widget())
    {
        m_widget->show();
    }

    QWidget *widget() const { return m_widget; }
    QCheckBox *checkBox() const { return child<QCheckBox>("enableSignStepCheckBox"); }
    QComboBox *comboBox(const QString &file) const
    {
        return child<QComboBox>(file + "ChooserComboBox");
    }
    PathChooser *chooser(const QString &file) const
    {
        return child<PathChooser>(file + "PathChooser");
    }

    void clickCheckBox() const { QTest::mouseClick(checkBox(), Qt::LeftButton); }
    void choose(const QString &file, bool custom) const
    {
        QTest::keyClick(comboBox(file), custom ? Qt::Key_Down : Qt::Key_Up);
    }
    void type(const QString &file, const QString &path) const
    {
        chooser(file)->lineEdit()->selectAll();
        QTest::keyClicks(chooser(file)->lineEdit(), path);
        QTest::keyClick(chooser(file)->lineEdit(), Qt::Key_Return);
    }

private:
    template<class Widget>
    Widget *child(const QString &name) const
    {
        auto *widget = m_widget->findChild<Widget *>(name);
        if (!widget)
            qFatal("There is no %s", qPrintable(name));
        return widget;
    }

    QWidget *m_widget;
};

class SignOptionsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void choices_data();
    void choices();
    void customStaysDisabledWithoutTheCheckBox();
    void pathsOutsideTheWorkspaceAreRefused_data();
    void pathsOutsideTheWorkspaceAreRefused();
    void validityFollowsTheWorkspace();
    void withoutABuildEngine();
    void whatWasNotAppliedIsForgotten();
    void searchFindsThePageUnopened();
    void applyUnopenedIsASoftAssert();
    void isAmongTheOptionsWhileItLives();
    void enteredPathsAreOfferedAgain();
    void asksForAKeyFileInBothFields();
    void worksByKeyboard();
    void fitsANarrowDialog();
    void newStepsFollowThePage();

private:
    void perform(const QString &actions, SignOptionsPage &page);
    QString whatShows(SignOptionsPage &page) const;
    QStringList whatIsStored() const;
    QString path(const QString &relative) const { return m_root->path() + '/' + relative; }
    QString relative(const QString &path) const
    {
        return QString(path).remove(m_root->path() + '/');
    }
    static Brisk::BuildEngine *engine() { return Brisk::Sdk::buildEngines().constFirst(); }

    SettingsScope m_settings;
    std::unique_ptr<QTemporaryDir> m_root;
};

// The workspaces "ws" and "moved" have the regular keys, "bare" has none.
void SignOptionsTest::init()
{
    // The offscreen platform says so of every window.
    QTest::failOnWarning(QRegularExpression("^(?!This plugin does not support)"));
    m_settings.clear();
    m_root = std::make_unique<QTemporaryDir>();
    for (const QString folder :
         {"sdk/package-signing", "ws/.veyraos-regular-keys", "moved/.veyraos-regular-keys"}) {
        writeFile(path(folder + "/regular_key.pem"));
        writeFile(path(folder + "/regular_cert.pem"));
    }
    writeFile(path("ws/a.pem"));
    QVERIFY(QDir().mkpath(path("bare")));
    writeFile(path("sdk/sdk.ini"),
              "[BuildEngine]\nName=Engine\nSharedHome=../home\nSharedSource=" + path("ws").toUtf8()
                  + '\n');
    QString error;
    QVERIFY2(Brisk::Sdk::open(FilePath::fromString(path("sdk")), &error), qPrintable(error));
}

void SignOptionsTest::cleanup()
{
    Brisk::Sdk::close();
}

/// Actions, with "; " between them: "check": click the check box; "key custom", "certificate
/// regular": choose in a combo box; "key type PATH"; "move FOLDER": the workspace moves; "apply";
/// "reopen": the dialog.
void SignOptionsTest::perform(const QString &actions, SignOptionsPage &page)
{
    for (const QString &action : actions.split("; ")) {
        const OpenPage open(page);
        const QStringList words = action.split(' ');
        if (words.first() == "check")
            open.clickCheckBox();
        else if (words.first() == "move")
            engine()->setSharedSrcPath(FilePath::fromString(path(words.at(1))));
        else if (words.first() == "apply")
            page.apply();
        else if (words.first() == "reopen")
            page.finish();
        else if (words.at(1) == "type")
            open.type(words.first(), path(words.at(2)));
        else
            open.choose(words.first(), words.at(1) == "custom");
    }
}

/// The check box, the key and the certificate; what is disabled is in brackets.
QString SignOptionsTest::whatShows(SignOptionsPage &page) const
{
    const OpenPage open(page);
    const auto bracketed = [](const QWidget *widget, const QString &text) {
        return widget->isEnabled() ? text : '(' + text + ')';
    };
    QStringList texts{open.checkBox()->isChecked() ? "on" : "off"};
    for (const QString file : {"key", "certificate"}) {
        const QComboBox *comboBox = open.comboBox(file);
        const PathChooser *chooser = open.chooser(file);
        texts << bracketed(comboBox, comboBox->currentText()) + ": "
                     + bracketed(chooser, relative(chooser->filePath().toFSPathString()));
    }
    return texts.join("; ");
}

/// "key=value" without the histories.
QStringList SignOptionsTest::whatIsStored() const
{
    const QSettings settings;
    QStringList lines;
    for (const QString &key : settings.childKeys())
        lines << key + '=' + relative(settings.value(key).toString());
    return lines;
}

void SignOptionsTest::choices_data()
{
    QTest::addColumn<QStringList>("before"); // as whatIsStored()
    QTest::addColumn<QString>("actions");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QStringList>("stored");

    const QString key = "ws/.veyraos-regular-keys/regular_key.pem";
    const QString cert = "ws/.veyraos-regular-keys/regular_cert.pem";
    const QString showsKey = "on; Regular key: (" + key + "); ";
    const QString showsCert = "Regular certificate: (" + cert + ')';
    const auto options = [&](const QString &sign, const QString &keyPath, const QString &certPath) {
        const auto isRegular = [](const QString &path) {
            return path.contains("regular_") ? "true" : "false";
        };
        return QStringList{"Sealkit.DefaultSign=" + sign,
                           "Sealkit.GlobalSignCert=" + certPath,
                           "Sealkit.GlobalSignKey=" + keyPath,
                           QString("Sealkit.UseDefaultSignCert=") + isRegular(certPath),
                           QString("Sealkit.UseDefaultSignKey=") + isRegular(keyPath)};
    };
    const QStringList regular = options("true", key, cert);
    const QStringList customKey = options("true", "ws/a.pem", cert);
    const QStringList earlier{"Sealkit.GlobalSignKey=ws/a.pem"};
    const QStringList none;

    QTest::newRow("fresh") << none << "apply" << showsKey + showsCert << regular;
    QTest::newRow("custom without a path")
        << none << "key custom; apply"
        << "on; Custom key: ; " + showsCert << options("true", {}, cert);
    QTest::newRow("custom key") << none << "key custom; key type ws/a.pem; apply; reopen"
                                << "on; Custom key: ws/a.pem; " + showsCert << customKey;
    QTest::newRow("custom certificate")
        << none << "certificate custom; certificate type ws/a.pem; apply; reopen"
        << showsKey + "Custom certificate: ws/a.pem" << options("true", key, "ws/a.pem");
    QTest::newRow("regular is stored, custom is remembered")
        << customKey << "key regular; apply; key custom"
        << "on; Custom key: ws/a.pem; " + showsCert << regular;
    QTest::newRow("reopened, the regular path is the last custom one")
        << regular << "key custom"
        << "on; Custom key: " + key + "; " + showsCert << regular;
    QTest::newRow("check box cleared")
        << customKey << "check; apply; reopen"
        << "off; (Custom key): (ws/a.pem); (Regular certificate): (" + cert + ')'
        << options("false", "ws/a.pem", cert);
    QTest::newRow("the check box brings the remembered path back")
        << customKey << "key type ws/b.pem; check; check"
        << "on; Custom key: ws/a.pem; " + showsCert << customKey;
    QTest::newRow("with regular chosen, the check box takes that for the last custom path")
        << customKey << "key regular; check; check; key custom"
        << "on; Custom key: " + key + "; " + showsCert << customKey;
    QTest::newRow("regular follows the workspace, custom stays")
        << customKey << "move moved"
        << "on; Custom key: ws/a.pem; "
           "Regular certificate: (moved/.veyraos-regular-keys/regular_cert.pem)"
        << customKey;
    QTest::newRow("workspace without keys")
        << none << "move bare; apply"
        << "on; Regular key: (sdk/package-signing/regular_key.pem); "
           "Regular certificate: (sdk/package-signing/regular_cert.pem)"
        << options("true",
                   "sdk/package-signing/regular_key.pem",
                   "sdk/package-signing/regular_cert.pem");
    QTest::newRow("the regular path is stored as it is, not as it is shown")
        << none << "move ws/../moved; apply"
        << "on; Regular key: (moved/.veyraos-regular-keys/regular_key.pem); "
           "Regular certificate: (moved/.veyraos-regular-keys/regular_cert.pem)"
        << options("true",
                   "ws/../moved/.veyraos-regular-keys/regular_key.pem",
                   "ws/../moved/.veyraos-regular-keys/regular_cert.pem");
    QTest::newRow("earlier version") << earlier << "apply" << showsKey + showsCert << regular;
    QTest::newRow("earlier version, custom chosen")
        << earlier << "key custom; apply"
        << "on; Custom key: ws/a.pem; " + showsCert << customKey;
}

void SignOptionsTest::choices()
{
    QFETCH(QStringList, before);
    QFETCH(QString, actions);
    QFETCH(QStringList, stored);
    for (const QString &line : before) {
        const QString value = line.section('=', 1);
        QSettings().setValue(line.section('=', 0, 0), value.contains('/') ? path(value) : value);
    }

    SignOptionsPage page;
    perform(actions, page);
    QTEST(whatShows(page), "shown");
    QCOMPARE(whatIsStored(), stored);
}

void SignOptionsTest::customStaysDisabledWithoutTheCheckBox()
{
    SignOptionsPage page;
    OpenPage(page).checkBox()->setChecked(false);
    QVERIFY(OpenPage(page).comboBox("key")->isEnabled()); // only a click counts
    OpenPage(page).checkBox()->setChecked(true);

    perform("check", page);
    for (const QString file : {"key", "certificate"}) {
        OpenPage(page).comboBox(file)->setCurrentIndex(1); // nobody can click it any more
        QVERIFY(!OpenPage(page).chooser(file)->isEnabled());
    }
    perform("check", page);
    for (const QString file : {"key", "certificate"})
        QVERIFY(OpenPage(page).chooser(file)->isEnabled());
}

void SignOptionsTest::pathsOutsideTheWorkspaceAreRefused_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<bool>("valid");
    QTest::newRow("inside") << "/ws/a.pem" << true;
    QTest::newRow("inside, not there") << "/ws/deep/none.pem" << true;
    QTest::newRow("sibling with the same beginning") << "/ws-old/a.pem" << true;
    QTest::newRow("outside") << "/sdk/a.pem" << false;
    QTest::newRow("out by a detour") << "/ws/../sdk/a.pem" << false;
    QTest::newRow("nowhere") << QString() << false;
}

void SignOptionsTest::pathsOutsideTheWorkspaceAreRefused()
{
    QFETCH(QString, file);
    QFETCH(bool, valid);
    SignOptionsPage page;
    for (const QString name : {"key", "certificate"}) {
        perform(name + " custom", page);
        PathChooser *chooser = OpenPage(page).chooser(name);
        chooser->lineEdit()->setText(file.isEmpty() ? QString() : m_root->path() + file);
        QCOMPARE(chooser->isValid(), valid);
        QCOMPARE(chooser->errorMessage(),
                 valid ? QString() : "The path must be inside workspace folder:\n" + path("ws"));
    }
}

void SignOptionsTest::validityFollowsTheWorkspace()
{
    SignOptionsPage page;
    perform("key custom; key type ws/a.pem; key regular; key custom", page);
    const PathChooser *chooser = OpenPage(page).chooser("key");
    QVERIFY(chooser->isValid());

    perform("move moved", page);
    QVERIFY(!chooser->isValid());
    QVERIFY(OpenPage(page).chooser("certificate")->isValid());
    perform("move ws", page);
    QVERIFY(chooser->isValid());
}

void SignOptionsTest::withoutABuildEngine()
{
    Brisk::Sdk::close();
    SignOptionsPage page;
    QCOMPARE(whatShows(page), "on; Regular key: (); Regular certificate: ()");
    perform("key custom; key type ws/a.pem", page);
    QVERIFY(!OpenPage(page).chooser("key")->isValid());
    perform("apply", page);
    QCOMPARE(QSettings().value("Sealkit.GlobalSignKey").toString(), path("ws/a.pem"));
}

void SignOptionsTest::whatWasNotAppliedIsForgotten()
{
    SignOptionsPage page;
    const QPointer<QWidget> first = page.widget();
    QCOMPARE(page.widget(), first.data());
    perform("key custom; check", page);
    page.finish();
    QVERIFY(!first);
    page.finish(); // a dialog may close twice
    QVERIFY(whatIsStored().isEmpty());
    QVERIFY(whatShows(page).startsWith("on; Regular key"));

    const QPointer<QWidget> destroyedByDialog = page.widget();
    delete destroyedByDialog;
    QVERIFY(page.widget());
}

void SignOptionsTest::searchFindsThePageUnopened()
{
    const SignOptionsPage page;
    for (const QString text : {"sign step by default",
                               "key:",
                               "certificate:",
                               "regular key",
                               "custom certificate",
                               "enhanced mail container (*.pem)"}) {
        const QRegularExpression search(QRegularExpression::escape(text),
                                        QRegularExpression::CaseInsensitiveOption);
        QVERIFY2(page.matches(search), qPrintable(text));
    }
    QVERIFY(!page.matches(QRegularExpression("&")));
    QVERIFY(!page.matches(QRegularExpression("toolchain")));
}

void SignOptionsTest::applyUnopenedIsASoftAssert()
{
    SignOptionsPage page;
    QVERIFY(page.matches(QRegularExpression("key"))); // opens nothing
    QTest::ignoreMessage(QtDebugMsg,
                         QRegularExpression("^SOFT ASSERT \\[.*\\]: \"m_widget\" in "
                                            ".*signoptionspage\\.cpp:40$"));
    page.apply();
    QVERIFY(whatIsStored().isEmpty());
}

void SignOptionsTest::isAmongTheOptionsWhileItLives()
{
    QPointer<QWidget> widget;
    {
        SignOptionsPage page;
        QCOMPARE(Core::IOptionsPage::allOptionsPages(), QList<Core::IOptionsPage *>{&page});
        QCOMPARE(page.id(), Utils::Id("Z.SignOptions"));
        QCOMPARE(page.category(), Utils::Id("W.Kiln"));
        QCOMPARE(page.displayName(), "Sign packages");
        widget = page.widget();
    }
    QVERIFY(Core::IOptionsPage::allOptionsPages().isEmpty());
    QVERIFY(!widget); // its code would go with the plugin
}

void SignOptionsTest::enteredPathsAreOfferedAgain()
{
    SignOptionsPage page;
    perform("key custom; key type ws/a.pem; reopen", page);
    const auto offered = [&](const QString &file) {
        const QAbstractItemModel *model =
            OpenPage(page).chooser(file)->lineEdit()->completer()->model();
        return model->rowCount() == 0 ? QString() : model->index(0, 0).data().toString();
    };
    QCOMPARE(offered("key"), path("ws/a.pem"));
    QCOMPARE(offered("certificate"), QString());
}

void SignOptionsTest::asksForAKeyFileInBothFields()
{
    SignOptionsPage page;
    for (const QString file : {"key", "certificate"}) {
        const PathChooser *chooser = OpenPage(page).chooser(file);
        QCOMPARE(chooser->lineEdit()->placeholderText(), "Select key file (*.pem)");
        QVERIFY(chooser->toolTip().startsWith("The path to the " + file + " file"));
    }
}

void SignOptionsTest::worksByKeyboard()
{
    SignOptionsPage page;
    perform("key custom; certificate custom", page);
    const OpenPage open(page);
    QVERIFY(QTest::qWaitForWindowActive(open.widget()));

    QTest::keyClick(open.widget(), Qt::Key_K, Qt::AltModifier);
    QCOMPARE(QApplication::focusWidget(), open.comboBox("key"));
    QTest::keyClick(open.widget(), Qt::Key_R, Qt::AltModifier);
    QCOMPARE(QApplication::focusWidget(), open.comboBox("certificate"));

    open.checkBox()->setFocus();
    const QList<QWidget *> order{open.comboBox("key"),
                                 open.chooser("key")->lineEdit(),
                                 open.chooser("key")->buttonAtIndex(0),
                                 open.comboBox("certificate"),
                                 open.chooser("certificate")->lineEdit(),
                                 open.chooser("certificate")->buttonAtIndex(0),
                                 open.checkBox()};
    for (QWidget *next : order) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), next);
    }
}

void SignOptionsTest::fitsANarrowDialog()
{
    SignOptionsPage page;
    const OpenPage open(page);
    QVERIFY(open.widget()->minimumSizeHint().width() <= 640);
    open.widget()->resize(640, 300);
    QVERIFY(open.chooser("key")->lineEdit()->width() >= 150);
    QCOMPARE(open.chooser("key")->geometry().left(),
             open.chooser("certificate")->geometry().left());
}

class TestDeployFactory : public DeployConfigurationFactory
{
public:
    TestDeployFactory()
    {
        setConfigBaseId("Test.Deploy");
        addSupportedTargetDeviceType("Test.Device");
    }
};

void SignOptionsTest::newStepsFollowThePage()
{
    const TestDeployFactory factory;
    Kit kit("Test.Kit");
    RunDeviceTypeKitAspect::setDeviceTypeId(&kit, "Test.Device");
    Project project(FilePath::fromString(path("ws/app/rpm/app.spec")));
    Target *target = project.addTargetForKit(&kit);
    BuildStepList *steps = target->activeDeployConfiguration()->stepList();
    const auto isNewStepEnabled = [&] {
        return RpmsignExternalStep(steps, RpmsignExternalStep::stepId()).isEnabled();
    };
    StepKeys keys;
    keys.buildEngine = engine();

    SignOptionsPage page;
    QVERIFY(isNewStepEnabled());
    perform("check; apply", page);
    QVERIFY(!isNewStepEnabled());

    perform("check; key custom; key type ws/a.pem; apply", page);
    QVERIFY(isNewStepEnabled());
    QCOMPARE(keys.getKey(), path("ws/a.pem"));
    QCOMPARE(keys.getCertificate(), path("ws/.veyraos-regular-keys/regular_cert.pem"));
}

QTEST_MAIN(SignOptionsTest)
#include "tst_signoptions.moc"
