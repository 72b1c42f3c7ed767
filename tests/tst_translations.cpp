#include "files.h"
#include "settingsscope.h"
#include "straywarnings.h"
#include "testrow.h"

#include <coreplugin/actionmanager/actionmanager.h>
#include <coreplugin/actionmanager/command.h>
#include <extensionsystem/pluginmanager.h>
#include <host/application.h>
#include <utils/qtcsettings.h>

#include <QtWidgets>

using ExtensionSystem::PluginManager;

struct Message
{
    QString source;
    QString state; ///< empty when the translator is done with it
    QString translation;
};

static QList<Message> readCatalogue(const QString &path)
{
    QList<Message> read;
    QString source;
    for (QXmlStreamReader xml(readFile(path)); !xml.atEnd(); xml.readNext()) {
        if (xml.isStartElement() && xml.name() == QLatin1String("source"))
            source = xml.readElementText();
        else if (xml.isStartElement() && xml.name() == QLatin1String("translation"))
            read << Message{
                source, xml.attributes().value("type").toString(), xml.readElementText()};
    }
    return read;
}

// What a text has for the program and not for the reader: placeholders, markup, file patterns,
// message kinds, and that it has a mnemonic. Sorted, for languages differ in their order.
static QStringList fixedParts(const QString &text)
{
    static const QRegularExpression fixed(R"(%\d|%\w+%|<[^>]+>|\(\*\.\w+\)|^\[[EW]\] |\t|&(?=\w))");
    QStringList parts;
    for (auto matches = fixed.globalMatch(text); matches.hasNext();)
        parts << matches.next().captured();
    parts.sort();
    return parts;
}

/// The catalogues beside the sources, and in the plugin that loads them.
class TranslationsTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnStrayWarnings(); }

    void isCompleteAndUpToDate_data();
    void isCompleteAndUpToDate();
    void guideExplainsEveryText();
    void pluginSpeaks_data();
    void pluginSpeaks();

private:
    SettingsScope m_settings;
};

void TranslationsTest::isCompleteAndUpToDate_data()
{
    QTest::addColumn<QString>("path");
    addRow("German", TRANSLATIONS "/Sealkit_de.ts");
    addRow("Japanese", TRANSLATIONS "/Sealkit_ja.ts");
}

void TranslationsTest::isCompleteAndUpToDate()
{
    QFETCH(QString, path);
    const QTemporaryDir folder;
    const QString copy = folder.filePath("copy.ts");
    QVERIFY(QFile::copy(path, copy));
    QStringList update{"-silent", "-locations", "none", SOURCES, "-ts", copy};
    QCOMPARE(QProcess::execute(LUPDATE, update), 0);
    const QList<Message> messages = readCatalogue(copy);
    QVERIFY(!messages.isEmpty());
    for (const Message &message : messages) {
        QVERIFY2(message.state.isEmpty() && !message.translation.isEmpty(),
                 qPrintable("build update_translations, then translate: " + message.source));
        QVERIFY2(fixedParts(message.translation) == fixedParts(message.source),
                 qPrintable(message.source + "\nbecame\n" + message.translation));
    }
}

// Messages and labels alike; only the hints and dialog titles of path fields explain themselves.
void TranslationsTest::guideExplainsEveryText()
{
    static const QRegularExpression hint(
        "^(Select|Specify|The path to|Path to|User private key|Certificate to be used|If this|"
        "RPM package \\(|Privacy-Enhanced)");
    const auto plain = [](QString text) {
        static const QRegularExpression markup("<[^>]+>|[`*&]");
        static const QRegularExpression placeholder("%\\d");
        return text.remove(markup).replace(placeholder, "…").simplified();
    };
    const QString guide = plain(QString::fromUtf8(readFile(USER_GUIDE)));
    for (const Message &message : readCatalogue(TRANSLATIONS "/Sealkit_de.ts")) {
        const QString text = plain(message.source);
        QVERIFY2(hint.match(text).hasMatch() || guide.contains(text), qPrintable(text));
    }
}

void TranslationsTest::pluginSpeaks_data()
{
    addColumns<QVariant, QString, QString>("language", "resources", "menuEntry");

    addRow("a country's German", QVariant("de_AT"), RESOURCES, "Pakete &signieren");
    addRow("Japanese, in a plugin beside the IDE", QVariant("ja"), "/none", "パッケージの署名(&S)");
    addRow("not translated", QVariant("fr"), RESOURCES, "&Sign Packages");
    addRow("not chosen, on an English system", QVariant(), RESOURCES, "&Sign Packages");
}

void TranslationsTest::pluginSpeaks()
{
    QFETCH(QVariant, language);
    QFETCH(QString, resources);
    PluginManager manager;
    PluginManager::settings()->setValue("General/OverrideLanguage", language);
    Core::Host::setResourcePath(Utils::FilePath::fromString(resources));
    PluginManager::setPluginPaths({PLUGIN_PATH});
    PluginManager::loadPlugins();

    QTEST(Core::ActionManager::command("Sealkit.SignDialog")->action()->text(), "menuEntry");
}

QTEST_MAIN(TranslationsTest)
#include "tst_translations.moc"
