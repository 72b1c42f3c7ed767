#include "signoptionswidget.h"

#include "certificatenote.h"
#include "constants.h"
#include "keyfile.h"
#include "ui_signoptionswidget.h"
#include "utils.h"

#include <brisk/buildengine.h>
#include <utils/pathchooser.h>

#include <QSettings>

using Utils::FancyLineEdit;
using Utils::FilePath;
using Utils::PathChooser;

namespace Sealkit::Internal {

enum FileIndex { RegularFile, CustomFile };

using Self = SignOptionsWidget;

SignOptionsWidget::SignOptionsWidget()
    : m_ui(std::make_unique<Ui_SignOptionsWidget>())
{
    m_ui->setupUi(this);
    m_key = {.comboBox = m_ui->keyChooserComboBox,
             .chooser = m_ui->keyPathChooser,
             .pathKey = Constants::GLOBAL_SIGNKEY_KEY,
             .useDefaultKey = Constants::USE_DEFAULT_SIGNKEY_KEY};
    m_certificate = {.comboBox = m_ui->certificateChooserComboBox,
                     .chooser = m_ui->certificatePathChooser,
                     .pathKey = Constants::GLOBAL_SIGNCERT_KEY,
                     .useDefaultKey = Constants::USE_DEFAULT_SIGNCERT_KEY};

    if (const Brisk::BuildEngine *engine = firstBuildEngine()) {
        updateDefaultsKeys(engine->sharedSrcPath());
        connect(
            engine, &Brisk::BuildEngine::sharedSrcPathChanged, this, &Self::onSharedSrcPathChanged);
    }

    connect(m_ui->enableSignStepCheckBox, &QCheckBox::clicked, this, &Self::enablePathChoosers);
    initFileChoice(m_key,
                   tr("The path to the key file that will be used by default to sign rpm packages"),
                   Constants::DEFAULT_SIGNKEY_HISTORY_KEY,
                   {tr("Regular key"), tr("Custom key")});
    initFileChoice(m_certificate,
                   tr("The path to the certificate file that will be used by default to sign rpm "
                      "packages"),
                   Constants::DEFAULT_SIGNCERT_HISTORY_KEY,
                   {tr("Regular certificate"), tr("Custom certificate")});
    const auto indexChanged = &QComboBox::currentIndexChanged;
    connect(m_key.comboBox, indexChanged, this, &Self::keyChooserChanged);
    connect(m_certificate.comboBox, indexChanged, this, &Self::certificateChooserChanged);

    restore();
    for (FileChoice *choice : {&m_key, &m_certificate}) {
        choice->lastCustomPath = choice->chooser->filePath();
        choice->comboBox->setCurrentIndex(choice->useDefault ? RegularFile : CustomFile);
    }
    updatePathChoosers(); // a combo box whose index has not changed does not announce it
    const auto textChanged = &PathChooser::textChanged;
    connect(m_key.chooser, textChanged, this, &Self::updateKeyNote);
    connect(m_key.chooser, textChanged, this, &Self::updateCertificateNote);
    connect(m_certificate.chooser, textChanged, this, &Self::updateCertificateNote);
    enableComboBoxes(m_ui->enableSignStepCheckBox->isChecked());
}

SignOptionsWidget::~SignOptionsWidget() = default;

void SignOptionsWidget::initFileChoice(const FileChoice &choice,
                                       const QString &toolTip,
                                       const Utils::Key &historyKey,
                                       const QStringList &items)
{
    // The chooser's path is what will be stored; the text can have a "~" in it.
    const auto isValid = [this, chooser = choice.chooser](FancyLineEdit *, QString *error) -> bool {
        return verifyPath(chooser->filePath().toFSPathString(), error);
    };
    initPathChooser(
        choice.chooser,
        {.title = Constants::translated(Constants::SIGN_DATA_PEM_PROMPT_DIALOG_TITLE),
         .isValid = isValid,
         .filter = Constants::translated(Constants::SIGN_DATA_PEM_PROMPT_DIALOG_FILTER),
         .placeholderText = Constants::translated(Constants::SIGN_DATA_KEY_PLACEHOLDERTEXT),
         .historyKey = historyKey,
         .toolTip = toolTip});
    choice.comboBox->addItems(items);
}

void SignOptionsWidget::store() const
{
    QSettings settings;
    settings.setValue(Constants::ENABLE_DEFAULT_SIGN_KEY,
                      m_ui->enableSignStepCheckBox->isChecked());
    for (const FileChoice &choice : {m_key, m_certificate}) {
        // A default is stored as it was computed, not as the chooser reads it.
        const FilePath path = choice.useDefault ? choice.defaultPath : choice.chooser->filePath();
        settings.setValue(QLatin1String(choice.pathKey), path.toFSPathString());
        settings.setValue(QLatin1String(choice.useDefaultKey), choice.useDefault);
    }
}

void SignOptionsWidget::restore()
{
    const QSettings settings;
    m_ui->enableSignStepCheckBox->setChecked(
        settings.value(Constants::ENABLE_DEFAULT_SIGN_KEY, true).toBool());
    for (FileChoice *choice : {&m_key, &m_certificate}) {
        const QString path = settings.value(QLatin1String(choice->pathKey)).toString();
        choice->chooser->setFilePath(FilePath::fromString(path));
        choice->useDefault = settings.value(QLatin1String(choice->useDefaultKey), true).toBool();
    }
}

void SignOptionsWidget::showFile(FileChoice &choice, int index)
{
    // Also called when only the check box or the workspace has changed.
    const bool showedDefault = choice.useDefault;
    if (!showedDefault)
        choice.lastCustomPath = choice.chooser->filePath();

    choice.useDefault = index == RegularFile;
    if (choice.useDefault)
        choice.chooser->setFilePath(choice.defaultPath);
    else if (showedDefault)
        choice.chooser->setFilePath(choice.lastCustomPath);
    choice.chooser->setEnabled(!choice.useDefault && m_ui->enableSignStepCheckBox->isChecked());
}

/// Why a custom file cannot be used, in a text for the user; empty when it can be.
QString SignOptionsWidget::problemOf(const FileChoice &choice) const
{
    if (choice.useDefault)
        return {};
    const FilePath path = choice.chooser->filePath();
    if (path.isEmpty())
        return tr("No file is chosen");
    QString problem;
    if (!verifyPath(path.toFSPathString(), &problem))
        return problem.replace(QLatin1Char('\n'), QLatin1Char(' '));
    return path.isFile() ? QString() : tr("File does not exist");
}

void SignOptionsWidget::updateKeyNote()
{
    QString problem = problemOf(m_key);
    if (problem.isEmpty() && !m_key.useDefault
        && !holdsPrivateKey(m_key.chooser->filePath().toFSPathString())) {
        problem = tr("There is no private key in this file");
    }
    m_ui->keyNoteLabel->setNote(problem, NoteLabel::Warning);
}

void SignOptionsWidget::updateCertificateNote()
{
    const QString problem = problemOf(m_certificate);
    if (!problem.isEmpty())
        m_ui->certificateNoteLabel->setNote(problem, NoteLabel::Warning);
    else
        showCertificate(m_ui->certificateNoteLabel, m_certificate.chooser, m_key.chooser);
}

void SignOptionsWidget::keyChooserChanged(int index)
{
    showFile(m_key, index);
    updateKeyNote();
    updateCertificateNote();
}

void SignOptionsWidget::certificateChooserChanged(int index)
{
    showFile(m_certificate, index);
    updateCertificateNote();
}

void SignOptionsWidget::enableComboBoxes(bool enabled)
{
    m_key.comboBox->setEnabled(enabled);
    m_certificate.comboBox->setEnabled(enabled);
}

void SignOptionsWidget::enablePathChoosers(bool enabled)
{
    enableComboBoxes(enabled);
    updatePathChoosers();
}

void SignOptionsWidget::updatePathChoosers()
{
    keyChooserChanged(m_key.comboBox->currentIndex());
    certificateChooserChanged(m_certificate.comboBox->currentIndex());
}

void SignOptionsWidget::updateDefaultsKeys(const FilePath &sharedSrcPath)
{
    m_sharedSrcPath = sharedSrcPath;
    m_key.defaultPath = getDefaultKey(sharedSrcPath);
    m_certificate.defaultPath = getDefaultCertificate(sharedSrcPath);
}

void SignOptionsWidget::onSharedSrcPathChanged(const FilePath &sharedSrcPath)
{
    updateDefaultsKeys(sharedSrcPath);
    updatePathChoosers();
    // The text of a custom path has not changed, but it may lie outside the new workspace.
    m_key.chooser->triggerChanged();
    m_certificate.chooser->triggerChanged();
}

bool SignOptionsWidget::verifyPath(const QString &path, QString *error) const
{
    return isInWorkspace(path, m_sharedSrcPath, error);
}

QString SignOptionsWidget::searchKeywords() const
{
    QStringList texts{m_ui->enableSignStepCheckBox->text(),
                      m_ui->keysGroupBox->title(),
                      m_ui->keyLabel->text(),
                      m_ui->certificateLabel->text()};
    for (const FileChoice &choice : {m_key, m_certificate}) {
        for (int i = 0; i < choice.comboBox->count(); ++i)
            texts << choice.comboBox->itemText(i);
        texts << choice.chooser->promptDialogFilter();
    }
    return texts.join(QLatin1Char('\n')).remove(QLatin1Char('&'));
}

} // namespace Sealkit::Internal
