#include "passworddialog.h"

#include "ideclosing.h"
#include "straywarnings.h"

#include <coreplugin/icore.h>

#include <QtWidgets>

using namespace Sealkit::Internal;

class PasswordDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnStrayWarnings(); }

    void refusesWhatIsNoAnswer();
    void returnsTheAnswerAsTyped();
    void forgetsWhatWasDeclined();
    void asksNobodyWhenNothingIsWanted();
};

void PasswordDialogTest::refusesWhatIsNoAnswer()
{
    PasswordDialogPrivate dialog("Enter pass phrase for <b>/k.pem</b>:");
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    const QList<QLabel *> labels = dialog.findChildren<QLabel *>();
    QCOMPARE(labels.first()->text(), "Enter pass phrase for <b>/k.pem</b>:");
    QCOMPARE(labels.first()->textFormat(), Qt::PlainText);
    auto *edit = dialog.findChild<QLineEdit *>();
    QVERIFY(edit->hasFocus());
    QCOMPARE(edit->echoMode(), QLineEdit::Password);

    for (const QString text : {"", "a\nb", "a\rb"}) {
        edit->setText(text);
        QTest::keyClick(edit, Qt::Key_Return);
        QVERIFY(dialog.isVisible() && labels.last()->isVisible());
        QCOMPARE(labels.last()->text(),
                 text.isEmpty() ? "Password can't be empty"
                                : "Password contains invalid newline characters");
    }
}

void PasswordDialogTest::returnsTheAnswerAsTyped()
{
    const QString answer =
        R"( !"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\]^_`)"
        "abcdefghijklmnopqrstuvwxyz{|}~\tпароль\u00a0и\u0306\u3000👩🏽‍💻 ";
    QTimer::singleShot(0, [&answer] {
        auto *edit = QApplication::activeModalWidget()->findChild<QLineEdit *>();
        QGuiApplication::clipboard()->setText(answer);
        QTest::keySequence(edit, QKeySequence::Paste);
        QTest::keyClick(edit, Qt::Key_Return);
    });
    bool ok = false;
    QCOMPARE(PasswordDialog::getPassord("?", &ok), answer);
    QVERIFY(ok);
}

void PasswordDialogTest::forgetsWhatWasDeclined()
{
    QWidget *dialog = nullptr; // stays
    QTimer::singleShot(0, [&dialog] {
        dialog = QApplication::activeModalWidget();
        dialog->findChild<QLineEdit *>()->insert("typed");
        dialog->close();
    });
    bool ok = true;
    QVERIFY(PasswordDialog::getPassord("?", &ok).isNull());
    QVERIFY(!ok);
    auto *edit = dialog->findChild<QLineEdit *>();
    edit->setEchoMode(QLineEdit::Normal); // where undoing brings text back
    edit->undo();
    QCOMPARE(edit->text(), QString());
    delete dialog;
}

void PasswordDialogTest::asksNobodyWhenNothingIsWanted()
{
    std::stop_source stop;
    bool ok = true;
    QTimer::singleShot(0, [&stop] { stop.request_stop(); });
    QVERIFY(PasswordDialog::getPassord("?", &ok, stop.get_token()).isNull());
    QVERIFY(!ok);
    qDeleteAll(QApplication::topLevelWidgets()); // as it was declined

    bool hasAsked = false;
    const auto ask = [&](const std::stop_token &token) {
        QTimer::singleShot(0, this, [&] {
            if (auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget())) {
                hasAsked = true;
                dialog->reject();
            }
        });
        PasswordDialog::getPassord("?", &ok, token);
        QCoreApplication::processEvents();
    };
    ask(stop.get_token());
    watchIdeClosing();
    emit Core::ICore::instance()->coreAboutToClose();
    ask({});
    watchIdeClosing();
    QVERIFY(!hasAsked);
}

QTEST_MAIN(PasswordDialogTest)
#include "tst_passworddialog.moc"
