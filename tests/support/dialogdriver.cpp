#include "dialogdriver.h"

#include <utils/pathchooser.h>
#include <utils/utilsicons.h>

#include <QTest>

void DialogDriver::open(QDialog *newDialog)
{
    dialog = newDialog;
    dialog->show();
    QTRY_VERIFY_WITH_TIMEOUT(!dialog || status() != "Updating targets...", RUN_TIMEOUT);
    waitUntilIdle();
}

void DialogDriver::waitUntilIdle() const
{
    QCoreApplication::processEvents();
    QTRY_VERIFY_WITH_TIMEOUT(!dialog || !isBusy(), RUN_TIMEOUT);
}

void DialogDriver::enter(const QString &pathChooser, const QString &path) const
{
    QLineEdit *edit = child<Utils::PathChooser>(pathChooser)->lineEdit();
    edit->selectAll();
    edit->insert(path);
    waitUntilIdle();
}

void DialogDriver::choose(const QString &comboBox, const QString &text) const
{
    child<QComboBox>(comboBox)->setCurrentText(text);
    waitUntilIdle();
}

void DialogDriver::click(const QString &button) const
{
    auto *pushButton = child<QPushButton>(button);
    auto *tabs = child<QTabWidget>();
    for (QWidget *page = pushButton; page; page = page->parentWidget()) {
        if (tabs->indexOf(page) >= 0)
            tabs->setCurrentWidget(page);
    }
    waitUntilIdle();
    pushButton->click();
    waitUntilIdle();
}

static QString iconOf(const QLabel *label)
{
    const QImage image = label->pixmap().toImage();
    if (image == Utils::Icons::OK.pixmap().toImage())
        return "OK";
    if (image == Utils::Icons::BROKEN.pixmap().toImage())
        return "BROKEN";
    return image.isNull() ? QString() : "unknown";
}

QString DialogDriver::icon(const QString &label) const
{
    return iconOf(child<QLabel>(label));
}

QStringList DialogDriver::texts() const
{
    QStringList texts{status()};
    for (const QLabel *label : dialog->findChildren<QLabel *>())
        texts << label->text() << label->objectName() + ' ' + iconOf(label);
    for (const QTextEdit *edit : dialog->findChildren<QTextEdit *>())
        texts << edit->toPlainText();
    return texts;
}
