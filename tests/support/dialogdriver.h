#pragma once

#include <QPointer>
#include <QtWidgets>

constexpr int RUN_TIMEOUT = 20'000; // milliseconds

/// Somebody at the sign dialog: enters paths, clicks, waits for the runs to end, reads what shows.
class DialogDriver
{
public:
    ~DialogDriver() { delete dialog; }

    /// Shows \a newDialog, and waits until it has found its targets or said why there are none.
    void open(QDialog *newDialog);

    template<class Widget>
    Widget *child(const QString &name = {}) const
    {
        return dialog->findChild<Widget *>(name);
    }
    bool isBusy() const { return !child<QWidget>("busyIndicator")->isHidden(); }
    void waitUntilIdle() const;

    /// Waits for the run to end; so do the other two.
    void enter(const QString &pathChooser, const QString &path) const;
    void choose(const QString &comboBox, const QString &text) const;
    /// Opens the button's tab first.
    void click(const QString &button) const;

    QString status() const { return child<QStatusBar>()->currentMessage(); }
    QString text(const QString &label) const { return child<QLabel>(label)->text(); }
    /// "OK", "BROKEN", or nothing.
    QString icon(const QString &label) const;
    /// Of the first signature.
    QString dump() const
    {
        return child<QTextEdit>("developerSignatureTextBrowser")->toPlainText();
    }
    /// All that shows, icons behind the names of their labels.
    QStringList texts() const;

    QPointer<QDialog> dialog;
};
