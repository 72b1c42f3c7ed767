#include "passworddialog.h"
#include "straywarnings.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

using namespace Sealkit::Internal;

class PasswordDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnStrayWarnings(); }

    void refusesWhatIsNoAnswer();
    void returnsTheAnswerAsTyped_data();
    void returnsTheAnswerAsTyped();
    void tellsThatItWasDeclined_data();
    void tellsThatItWasDeclined();
};

static QPushButton *button(const QDialog &dialog, QDialogButtonBox::StandardButton which)
{
    return dialog.findChild<QDialogButtonBox *>()->button(which);
}

static QLabel *labelWithText(const QDialog &dialog, const QString &text)
{
    const QList<QLabel *> labels = dialog.findChildren<QLabel *>();
    for (QLabel *label : labels) {
        if (label->text() == text)
            return label;
    }
    return nullptr;
}

void PasswordDialogTest::refusesWhatIsNoAnswer()
{
    PasswordDialogPrivate dialog(QStringLiteral("Enter pass phrase for <b>/k.pem</b>:"));
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    QVERIFY(labelWithText(dialog, QStringLiteral("Enter pass phrase for <b>/k.pem</b>:")));
    auto *edit = dialog.findChild<QLineEdit *>();
    QVERIFY(edit->hasFocus());
    QCOMPARE(edit->echoMode(), QLineEdit::Password);
    QPushButton *ok = button(dialog, QDialogButtonBox::Ok);

    QTest::mouseClick(ok, Qt::LeftButton);
    QLabel *error = labelWithText(dialog, QStringLiteral("Password can't be empty"));
    QVERIFY(error);
    QVERIFY(error->isVisible());

    for (const char *lineEnd : {"\n", "\r", "\r\n"}) {
        edit->setText(QStringLiteral("a%1b").arg(QLatin1String(lineEnd)));
        QTest::mouseClick(ok, Qt::LeftButton);
        QCOMPARE(error->text(), QStringLiteral("Password contains invalid newline characters"));
    }
    QVERIFY(dialog.isVisible());

    edit->setText(QStringLiteral("fine"));
    QTest::mouseClick(ok, Qt::LeftButton);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
}

void PasswordDialogTest::returnsTheAnswerAsTyped_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<bool>("pastes");

    QString ascii;
    for (char character = ' '; character <= '~'; ++character)
        ascii += QLatin1Char(character);
    QTest::newRow("typed") << QString(ascii + ' ') << false;
    QTest::newRow("pasted") << " \tпароль\u00a0и\u0306\u3000👩🏽‍💻 " << true;
}

void PasswordDialogTest::returnsTheAnswerAsTyped()
{
    QFETCH(const QString, answer);
    QFETCH(const bool, pastes);
    QTimer::singleShot(0, [&answer, pastes] {
        auto *edit = QApplication::activeModalWidget()->findChild<QLineEdit *>();
        if (pastes) {
            QGuiApplication::clipboard()->setText(answer);
            QTest::keySequence(edit, QKeySequence::Paste);
        } else {
            QTest::keyClicks(edit, answer);
        }
        QTest::keyClick(edit, Qt::Key_Return);
    });
    bool ok = false;
    QCOMPARE(PasswordDialog::getPassord(QStringLiteral("?"), &ok), answer);
    QVERIFY(ok);
}

void PasswordDialogTest::tellsThatItWasDeclined_data()
{
    QTest::addColumn<bool>("byCloseButton");

    QTest::newRow("Escape") << false;
    QTest::newRow("close button") << true;
}

void PasswordDialogTest::tellsThatItWasDeclined()
{
    QFETCH(const bool, byCloseButton);
    QPointer<QWidget> dialog;
    QTimer::singleShot(0, [&dialog, byCloseButton] {
        dialog = QApplication::activeModalWidget();
        dialog->findChild<QLineEdit *>()->insert(QStringLiteral("typed"));
        if (byCloseButton)
            dialog->close();
        else
            QTest::keyClick(dialog, Qt::Key_Escape);
    });
    bool ok = true;
    const QString answer = PasswordDialog::getPassord(QStringLiteral("?"), &ok);
    QVERIFY(!ok);
    QVERIFY(answer.isNull());
    // What was typed is not in the dialog that stays.
    auto *edit = dialog->findChild<QLineEdit *>();
    edit->setEchoMode(QLineEdit::Normal); // where undoing brings text back
    edit->undo();
    QCOMPARE(edit->text(), QString());
    delete dialog;
}

QTEST_MAIN(PasswordDialogTest)
#include "tst_passworddialog.moc"
