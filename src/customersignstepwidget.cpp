#include "customersignstepwidget.h"

#include "certificatenote.h"
#include "ui_customersignstepwidget.h"
#include "utils.h"

#include <utils/pathchooser.h>

#include <QDir>
#include <QFileDialog>

using Utils::FancyLineEdit;
using Utils::FilePath;
using Utils::PathChooser;

namespace Sealkit::Internal {

CustomerSignStepWidget::CustomerSignStepWidget(Kiln::Internal::KilnProcessStep * /*step*/)
    : m_ui(std::make_unique<Ui_CustomerSignStepWidget>())
{
    m_ui->setupUi(this);

    using Self = CustomerSignStepWidget;
    const auto changed = &PathChooser::textChanged;
    connect(m_ui->binariesKeyPathChooser, changed, this, &Self::binariesKeyChanged);
    connect(m_ui->packagesKeyPathChooser, changed, this, &Self::packagesKeyChanged);
    connect(m_ui->packagesCertPathChooser, changed, this, &Self::packagesCertChanged);
    connect(m_ui->packagesClientCertPathChooser, changed, this, &Self::packagesClientCertChanged);

    const auto isInShared = [this](FancyLineEdit *edit, QString *error) -> bool {
        return verifyPath(edit->text(), error);
    };
    const auto isEmptyOrInShared = [this](FancyLineEdit *edit, QString *error) -> bool {
        return edit->text().isEmpty() || verifyPath(edit->text(), error);
    };
    initPathChooser(m_ui->binariesKeyPathChooser, {tr("Select binaries key"), isInShared});
    initPathChooser(m_ui->packagesKeyPathChooser, {tr("Select packages key"), isInShared});
    initPathChooser(m_ui->packagesCertPathChooser, {tr("Select packages certificate"), isInShared});
    initPathChooser(m_ui->packagesClientCertPathChooser,
                    {tr("Select packages client certificate"), isEmptyOrInShared});
    followKey(m_ui->binariesKeyNoteLabel, m_ui->binariesKeyPathChooser);
    followKey(m_ui->packagesKeyNoteLabel, m_ui->packagesKeyPathChooser);
    // One key serves both certificates.
    followCertificate(
        m_ui->packagesCertNoteLabel, m_ui->packagesCertPathChooser, m_ui->packagesKeyPathChooser);
    followCertificate(m_ui->packagesClientCertNoteLabel,
                      m_ui->packagesClientCertPathChooser,
                      m_ui->packagesKeyPathChooser);

    connect(m_ui->signDebugPackageCheckBox, &QCheckBox::clicked, this, &Self::signDebugPackages);
}

CustomerSignStepWidget::~CustomerSignStepWidget() = default;

void CustomerSignStepWidget::validatePaths()
{
    for (PathChooser *chooser : findChildren<PathChooser *>())
        chooser->lineEdit()->validate();
}

void CustomerSignStepWidget::setSharedHomePath(const FilePath &path)
{
    m_sharedHomePath = path;
    for (PathChooser *chooser : findChildren<PathChooser *>())
        chooser->setInitialBrowsePathBackup(path);
    validatePaths();
}

void CustomerSignStepWidget::setSharedSrcPath(const FilePath &path)
{
    m_sharedSrcPath = path;
    validatePaths();
}

bool CustomerSignStepWidget::verifyPath(const QString &path, QString *error) const
{
    if (isFileChildOf(path, m_sharedHomePath) || isFileChildOf(path, m_sharedSrcPath))
        return true;
    if (error) {
        *error = tr("The path must be inside shared folders:\n%1\n%2")
                     .arg(m_sharedHomePath.toUserOutput(), m_sharedSrcPath.toUserOutput());
    }
    return false;
}

void CustomerSignStepWidget::setCommandText(const QString &text)
{
    m_ui->commandLabelEdit->setText(text);
}

QString CustomerSignStepWidget::commnadText() const
{
    return m_ui->commandLabelEdit->text();
}

void CustomerSignStepWidget::setBinariesKey(const QString &path)
{
    m_ui->binariesKeyPathChooser->setFilePath(FilePath::fromUserInput(path));
}

void CustomerSignStepWidget::setPackagesKey(const QString &path)
{
    m_ui->packagesKeyPathChooser->setFilePath(FilePath::fromUserInput(path));
}

void CustomerSignStepWidget::setPackagesCert(const QString &path)
{
    m_ui->packagesCertPathChooser->setFilePath(FilePath::fromUserInput(path));
}

void CustomerSignStepWidget::setPackagesClientCert(const QString &path)
{
    m_ui->packagesClientCertPathChooser->setFilePath(FilePath::fromUserInput(path));
}

void CustomerSignStepWidget::setSignDebugPackages(bool sign)
{
    m_ui->signDebugPackageCheckBox->setChecked(sign);
}

QString CustomerSignStepWidget::openFileSelectDialog(const QString &title)
{
    return QFileDialog::getOpenFileName(
        this, title, QDir::toNativeSeparators(m_sharedHomePath.toFSPathString()));
}

} // namespace Sealkit::Internal
