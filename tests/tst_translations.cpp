#include "files.h"
#include "settingsscope.h"
#include "straywarnings.h"
#include "testrow.h"

#include <coreplugin/actionmanager/actionmanager.h>
#include <coreplugin/actionmanager/command.h>
#include <coreplugin/dialogs/ioptionspage.h>
#include <extensionsystem/pluginmanager.h>
#include <host/application.h>
#include <utils/qtcsettings.h>

#include <QtWidgets>

using ExtensionSystem::PluginManager;

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
    QList<Message> messages;
    QString context;
    for (QXmlStreamReader xml(readFile(path)); !xml.atEnd(); xml.readNext()) {
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
    QTest::addColumn<QString>("fileName");
    addRow("German", "Sealkit_de.ts");
    addRow("Japanese", "Sealkit_ja.ts");
}

void TranslationsTest::isCompleteAndUpToDate()
{
    QFETCH(QString, fileName);
    const QString path = TRANSLATIONS "/" + fileName;
    const QList<Message> messages = readCatalogue(path);
    QVERIFY(!messages.isEmpty());
    for (const Message &message : messages) {
        QVERIFY2(message.state.isEmpty() && !message.translation.isEmpty(),
                 qPrintable("not translated: " + message.source));
        QVERIFY2(fixedParts(message.translation) == fixedParts(message.source),
                 qPrintable(message.source + "\nbecame\n" + message.translation));
    }

    const QTemporaryDir folder;
    const QString copy = folder.filePath(fileName);
    QVERIFY(QFile::copy(path, copy));
    QCOMPARE(QProcess::execute(LUPDATE, {"-silent", "-locations", "none", SOURCES, "-ts", copy}),
             0);
    QVERIFY2(readCatalogue(copy) == messages,
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
    const QString guide = plain(QString::fromUtf8(readFile(USER_GUIDE)));
    for (const Message &message : readCatalogue(TRANSLATIONS "/Sealkit_de.ts")) {
        const QString text = plain(message.source);
        QVERIFY2(hint.match(text).hasMatch() || guide.contains(text), qPrintable(text));
    }
}

void TranslationsTest::pluginSpeaks_data()
{
    addColumns<QVariant, QString, QString>("language", "menuEntry", "checkBox");

    const QString german = "Signierschritt standardmäßig einschalten";
    const QString japanese = "署名ステップを既定で有効にする";
    const QString english = "Enable sign step by default";
    addRow("a country's German", QVariant("de_AT"), "Pakete &signieren", german);
    addRow("Japanese", QVariant("ja"), "パッケージの署名(&S)", japanese);
    addRow("not translated", QVariant("fr"), "&Sign Packages", english);
    addRow("not chosen, on an English system", QVariant(), "&Sign Packages", english);
}

void TranslationsTest::pluginSpeaks()
{
    QFETCH(QVariant, language);
    PluginManager manager;
    PluginManager::settings()->setValue("General/OverrideLanguage", language);
    Core::Host::setResourcePath(Utils::FilePath::fromString(RESOURCES));
    PluginManager::setPluginPaths({PLUGIN_PATH});
    PluginManager::loadPlugins();

    const Core::Command *command = Core::ActionManager::command("Sealkit.SignDialog");
    QVERIFY(command);
    QTEST(command->action()->text(), "menuEntry");
    Core::IOptionsPage *page = Core::IOptionsPage::allOptionsPages().value(0);
    QVERIFY(page);
    QTEST(page->widget()->findChild<QCheckBox *>("enableSignStepCheckBox")->text(), "checkBox");
}

QTEST_MAIN(TranslationsTest)
#include "tst_translations.moc"
