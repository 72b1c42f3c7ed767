#include "rpmsignexternalwidget.h"

#include "certificatenote.h"
#include "ui_rpmsignexternalwidget.h"
#include "utils.h"

#include <utils/pathchooser.h>
#include <veyraos/kilnprocessstep.h>

using Utils::FancyLineEdit;
using Utils::FilePath;
using Utils::PathChooser;

namespace Sealkit::Internal {

RpmsignExternalWidget::RpmsignExternalWidget(Kiln::Internal::KilnProcessStep *step)
    : m_step(step)
    , m_ui(std::make_unique<Ui_RpmsignExternalWidget>())
{
    m_ui->setupUi(this);
    using Self = RpmsignExternalWidget;
    connect(m_ui->keyPathChooser, &PathChooser::textChanged, this, &Self::keyChanged);
    connect(
        m_ui->certificatePathChooser, &PathChooser::textChanged, this, &Self::certificateChanged);

    const auto isValid = [this](FancyLineEdit *edit, QString *error) -> bool {
        return verifyPath(edit->text(), error);
    };
    initPathChooser(m_ui->keyPathChooser,
                    {tr("User private key for signing the package"), isValid});
    initPathChooser(m_ui->certificatePathChooser,
                    {tr("Certificate to be used in signature"), isValid});
    followKey(m_ui->keyNoteLabel, m_ui->keyPathChooser);
    followCertificate(
        m_ui->certificateNoteLabel, m_ui->certificatePathChooser, m_ui->keyPathChooser);

    m_ui->keysTypeComboBox->addItems({tr("Default key"), tr("Custom key")});
    m_ui->keysTypeComboBox->setCurrentIndex(0);
    connect(
        m_ui->keysTypeComboBox, &QComboBox::currentIndexChanged, this, &Self::updatePathChoosers);
    updatePathChoosers(m_ui->keysTypeComboBox->currentIndex());
}

RpmsignExternalWidget::~RpmsignExternalWidget() = default;

bool RpmsignExternalWidget::verifyPath(const QString &path, QString *error) const
{
    return isInWorkspace(path, m_sharedSrcPath, error);
}

void RpmsignExternalWidget::setSharedSrcPath(const FilePath &path)
{
    m_sharedSrcPath = path;
    for (PathChooser *chooser : {m_ui->keyPathChooser, m_ui->certificatePathChooser}) {
        chooser->setInitialBrowsePathBackup(path);
        chooser->lineEdit()->validate();
    }
}

void RpmsignExternalWidget::setKey(const QString &path)
{
    if (!path.isEmpty())
        m_ui->keyPathChooser->setFilePath(FilePath::fromUserInput(path));
}

void RpmsignExternalWidget::setCertificate(const QString &path)
{
    if (!path.isEmpty())
        m_ui->certificatePathChooser->setFilePath(FilePath::fromUserInput(path));
}

void RpmsignExternalWidget::setDefault(bool useDefault)
{
    m_ui->keysTypeComboBox->setCurrentIndex(useDefault ? 0 : 1);
    updatePathChoosers(m_ui->keysTypeComboBox->currentIndex());
}

void RpmsignExternalWidget::formatAndSetSummaryText(const QString &text)
{
    m_step->setSummaryText(QStringLiteral("<b>%1:</b> %2").arg(m_step->displayName(), text));
}

void RpmsignExternalWidget::updatePathChoosers(int index)
{
    const bool custom = index != 0;
    m_ui->keyLabel->setVisible(custom);
    m_ui->keyPathChooser->setVisible(custom);
    m_ui->certificateLabel->setVisible(custom);
    m_ui->certificatePathChooser->setVisible(custom);

    emit useDefaultValuesChanged(!custom);
    m_ui->keysTypeLabel->setText(custom ? tr("Custom keys are used") : tr("Global keys are used"));

    m_ui->keyPathChooser->lineEdit()->clear();
    m_ui->certificatePathChooser->lineEdit()->clear();
}

} // namespace Sealkit::Internal
