#include "generalpage.h"

#include "session.h"

#include <utils/pathchooser.h>

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QRegularExpression>

using Utils::FilePath;

namespace Workbench {

constexpr char CATEGORY[] = "Workbench";

GeneralPage::GeneralPage(Session *session)
    : m_session(session)
{
    setId("Workbench.General");
    setDisplayName(tr("General"));
    setCategory(CATEGORY);
    registerCategory(CATEGORY, tr("Workbench"), FilePath::fromString(":/utils/images/newfile.svg"));
}

GeneralPage::~GeneralPage()
{
    delete m_widget;
}

static QComboBox *makeLanguageBox()
{
    auto *box = new QComboBox;
    box->setObjectName("languages");
    box->addItem(GeneralPage::tr("System language"), QString());
    for (const QString &language : Session::languages())
        box->addItem(QLocale(language).nativeLanguageName(), language);
    box->setCurrentIndex(qMax(0, box->findData(Session::chosenLanguage())));
    return box;
}

QWidget *GeneralPage::widget()
{
    if (m_widget)
        return m_widget;
    m_widget = new QWidget;
    m_languages = makeLanguageBox();
    m_sdk = new Utils::PathChooser;
    m_sdk->setObjectName("sdk");
    m_sdk->setExpectedKind(Utils::PathChooser::ExistingDirectory);
    m_sdk->setPromptDialogTitle(tr("Choose SDK"));
    m_sdk->setFilePath(FilePath::fromString(m_session->sdk()));
    auto *note = new QLabel(tr("Language and SDK change when the workbench is started again."));

    auto *layout = new QFormLayout(m_widget);
    layout->addRow(tr("&Language:"), m_languages);
    layout->addRow(tr("&SDK:"), m_sdk);
    layout->addRow(note);
    return m_widget;
}

void GeneralPage::apply()
{
    Session::chooseLanguage(m_languages->currentData().toString());
    m_session->chooseSdk(m_sdk->filePath().toFSPathString());
}

void GeneralPage::finish()
{
    delete m_widget;
}

bool GeneralPage::matches(const QRegularExpression &regexp) const
{
    return tr("Language").contains(regexp) || tr("SDK").contains(regexp);
}

} // namespace Workbench
