#include "settingsscope.h"
#include "straywarnings.h"
#include "temporarysdk.h"

#include <brisk/installation.h>
#include <coreplugin/actionmanager/actionmanager.h>
#include <coreplugin/actionmanager/command.h>
#include <coreplugin/dialogs/ioptionspage.h>
#include <extensionsystem/pluginmanager.h>
#include <host/application.h>
#include <projectexplorer/buildstep.h>
#include <utils/qtcsettings.h>

#include <QAction>
#include <QCheckBox>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>
#include <QXmlStreamReader>

using ExtensionSystem::PluginManager;
using Utils::FilePath;

namespace {

struct Message
{
    QString context;
    QString source;
    QString translation;
    /// Empty when the translator is done with it.
    QString state;
    friend bool operator==(const Message &, const Message &) = default;
};

QList<Message> readCatalogue(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<Message> messages;
    QString context;
    for (QXmlStreamReader xml(&file); !xml.atEnd(); xml.readNext()) {
        if (!xml.isStartElement())
            continue;
        if (xml.name() == QLatin1String("name")) {
            context = xml.readElementText();
        } else if (xml.name() == QLatin1String("source")) {
            messages << Message{context, xml.readElementText(), {}, {}};
        } else if (xml.name() == QLatin1String("translation")) {
            messages.last().state = xml.attributes().value("type").toString();
            messages.last().translation = xml.readElementText();
        }
    }
    return messages;
}

// What a text has for the program and not for the reader: placeholders, markup, file patterns,
// message kinds, and that it has a mnemonic. Sorted, for languages differ in their order.
QStringList fixedParts(const QString &text)
{
    static const QRegularExpression fixed(R"(%\d|%\w+%|<[^>]+>|\(\*\.\w+\)|^\[[EW]\] |\t|&(?=\w))");
    QStringList parts;
    for (auto matches = fixed.globalMatch(text); matches.hasNext();)
        parts << matches.next().captured();
    parts.sort();
    return parts;
}

} // namespace

/// The catalogues beside the sources, and in the plugin that loads them.
class TranslationsTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnStrayWarnings(); }

    void isComplete_data() { catalogues(); }
    void isComplete();
    void isUpToDate_data() { catalogues(); }
    void isUpToDate();
    void guideExplainsEveryText();
    void pluginSpeaks_data();
    void pluginSpeaks();

private:
    static void catalogues();

    SettingsScope m_settings;
    TemporarySdk m_sdk;
};

void TranslationsTest::catalogues()
{
    QTest::addColumn<QString>("path");
    for (const QString language : {"de", "ja"})
        QTest::newRow(qPrintable(language)) << TRANSLATIONS "/Sealkit_" + language + ".ts";
}

void TranslationsTest::isComplete()
{
    QFETCH(QString, path);
    const QList<Message> messages = readCatalogue(path);
    QVERIFY(!messages.isEmpty());
    for (const Message &message : messages) {
        QVERIFY2(message.state.isEmpty() && !message.translation.isEmpty(),
                 qPrintable("not translated: " + message.source));
        QVERIFY2(fixedParts(message.translation) == fixedParts(message.source),
                 qPrintable(message.source + "\nbecame\n" + message.translation));
    }
}

void TranslationsTest::isUpToDate()
{
    QFETCH(QString, path);
    const QTemporaryDir folder;
    const QString copy = folder.filePath(QFileInfo(path).fileName());
    QVERIFY(QFile::copy(path, copy));
    QProcess lupdate;
    lupdate.start(LUPDATE, {"-silent", "-locations", "none", SOURCES, "-ts", copy});
    QVERIFY2(lupdate.waitForFinished() && lupdate.exitCode() == 0,
             lupdate.readAllStandardError().constData());
    QVERIFY2(readCatalogue(copy) == readCatalogue(path),
             "texts have changed: build the target update_translations, then translate");
}

// Messages and labels alike; only the hints and dialog titles of path fields explain themselves.
void TranslationsTest::guideExplainsEveryText()
{
    static const QRegularExpression hint(
        "^(Select|Specify|The path to|Path to|User private key|Certificate to be used|If this|"
        "RPM package \\(|Privacy-Enhanced)");
    static const QRegularExpression markup("<[^>]+>|[`*&]");
    static const QRegularExpression placeholder("%\\d");
    const auto plain = [](QString text) {
        return text.remove(markup).replace(placeholder, "…").simplified();
    };

    QFile file(USER_GUIDE);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString guide = plain(QString::fromUtf8(file.readAll()));
    const QList<Message> messages = readCatalogue(TRANSLATIONS "/Sealkit_de.ts");
    for (const Message &message : messages) {
        const QString text = plain(message.source);
        QVERIFY2(hint.match(text).hasMatch() || guide.contains(text), qPrintable(text));
    }
}

void TranslationsTest::pluginSpeaks_data()
{
    QTest::addColumn<QVariant>("language");
    QTest::addColumn<QString>("menuEntry");
    QTest::addColumn<QString>("checkBox");

    const QString german = "Signierschritt standardmäßig einschalten";
    QTest::newRow("German") << QVariant("de") << "Pakete &signieren" << german;
    QTest::newRow("Japanese") << QVariant("ja") << "パッケージの署名(&S)"
                              << "署名ステップを既定で有効にする";
    QTest::newRow("a country's German") << QVariant("de_AT") << "Pakete &signieren" << german;
    QTest::newRow("not translated") << QVariant("fr") << "&Sign Packages"
                                    << "Enable sign step by default";
    QTest::newRow("not chosen, on an English system") << QVariant() << "&Sign Packages"
                                                      << "Enable sign step by default";
}

void TranslationsTest::pluginSpeaks()
{
    QFETCH(QVariant, language);
    QFETCH(QString, menuEntry);
    QFETCH(QString, checkBox);

    PluginManager manager;
    if (language.isValid())
        PluginManager::settings()->setValue("General/OverrideLanguage", language);
    else
        PluginManager::settings()->remove("General/OverrideLanguage");
    QString error;
    QVERIFY2(Brisk::openInstallation(FilePath::fromString(m_sdk.path()), &error),
             qPrintable(error));
    Core::Host::setResourcePath(FilePath::fromString(RESOURCES));
    PluginManager::setPluginPaths({PLUGIN_PATH});
    PluginManager::loadPlugins();

    const Core::Command *command = Core::ActionManager::command("Sealkit.SignDialog");
    QVERIFY(command);
    QCOMPARE(command->action()->text(), menuEntry);
    QCOMPARE(Core::IOptionsPage::allOptionsPages().size(), 1);
    Core::IOptionsPage *page = Core::IOptionsPage::allOptionsPages().first();
    QCOMPARE(page->widget()->findChild<QCheckBox *>("enableSignStepCheckBox")->text(), checkBox);

    // Made before the language is known, so the same in all.
    QStringList steps;
    for (const auto *factory : ProjectExplorer::BuildStepFactory::allBuildStepFactories())
        steps << factory->displayName();
    QVERIFY(steps.contains("RPM Sign (rpmsign-external)"));
    QVERIFY(steps.contains("RPM Sign (customer-sign)"));
}

QTEST_MAIN(TranslationsTest)
#include "tst_translations.moc"
