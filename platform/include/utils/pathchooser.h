#pragma once

#include <utils/fancylineedit.h>
#include <utils/filepath.h>

#include <QWidget>

class QAbstractButton;

namespace Utils {

/// A line edit for a path with a button that browses for it. By default, whether there is such a
/// path is found out aside: a first verdict, on the empty text, is on its way when the chooser has
/// been made, and comes also where another function judges by then.
class PathChooser : public QWidget
{
    Q_OBJECT

public:
    enum Kind { ExistingDirectory, Directory, File, SaveFile };

    explicit PathChooser(QWidget *parent = nullptr);
    ~PathChooser() override;

    void setExpectedKind(Kind kind);
    void setPromptDialogTitle(const QString &title);
    QString promptDialogTitle() const;
    void setPromptDialogFilter(const QString &filter);
    QString promptDialogFilter() const;
    /// Where browsing starts when the line edit names no folder.
    void setInitialBrowsePathBackup(const FilePath &path);
    void setHistoryCompleter(const Key &historyKey, bool restoreLastItemFromHistory = false);
    void setToolTip(const QString &toolTip);
    void setValidationFunction(const FancyLineEdit::ValidationFunction &function);

    /// The text as a path, with "~" expanded.
    FilePath filePath() const;
    bool isValid() const;
    QString errorMessage() const;
    FancyLineEdit *lineEdit() const;
    QAbstractButton *buttonAtIndex(int index) const;

    /// Judges the text again.
    void triggerChanged();

public slots:
    void setFilePath(const FilePath &path);

signals:
    void validChanged(bool valid);
    void rawPathChanged();
    void textChanged(const QString &text);
    void editingFinished();

private:
    FilePath browseStart() const;
    QString askForPath();
    void browse();

    class Private;
    const std::unique_ptr<Private> d;
};

} // namespace Utils
