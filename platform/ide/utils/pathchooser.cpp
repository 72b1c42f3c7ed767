#include <utils/pathchooser.h>

#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QPointer>
#include <QPushButton>

namespace Utils {

class PathChooser::Private
{
public:
    FancyLineEdit *lineEdit = nullptr;
    QPushButton *button = nullptr;
    Kind kind = ExistingDirectory;
    QString title;
    QString filter;
    FilePath browsePathBackup;
};

/// What is wrong with \a path as one of this kind; empty when nothing is.
static QString whatIsWrong(const FilePath &path, PathChooser::Kind kind)
{
    if (path.isEmpty())
        return PathChooser::tr("The path must not be empty.");

    const QString shown = path.toUserOutput();
    const bool mustExist = kind == PathChooser::ExistingDirectory || kind == PathChooser::File;
    if (mustExist && !path.exists())
        return PathChooser::tr("The path \"%1\" does not exist.").arg(shown);

    switch (kind) {
    case PathChooser::ExistingDirectory:
    case PathChooser::Directory:
        if (path.exists() && !path.isDir())
            return PathChooser::tr("The path \"%1\" is not a directory.").arg(shown);
        break;
    case PathChooser::File:
        if (!path.isFile())
            return PathChooser::tr("The path \"%1\" is not a file.").arg(shown);
        break;
    case PathChooser::SaveFile:
        if (path.isDir())
            return PathChooser::tr("The path \"%1\" is not a file.").arg(shown);
        if (!path.absoluteFilePath().parentDir().isDir())
            return PathChooser::tr("The directory \"%1\" does not exist.")
                .arg(path.absoluteFilePath().parentDir().toUserOutput());
        break;
    }
    return {};
}

PathChooser::PathChooser(QWidget *parent)
    : QWidget(parent)
    , d(std::make_unique<Private>())
{
    d->lineEdit = new FancyLineEdit(this);
    d->button = new QPushButton(tr("Browse..."), this);
    d->button->setAccessibleName(d->button->text()); // an owner may replace the text by an icon

    auto layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(d->lineEdit);
    layout->addWidget(d->button);
    setFocusProxy(d->lineEdit);
    setFocusPolicy(d->lineEdit->focusPolicy());

    connect(d->lineEdit, &FancyLineEdit::validChanged, this, &PathChooser::validChanged);
    connect(d->lineEdit, &QLineEdit::editingFinished, this, &PathChooser::editingFinished);
    connect(d->lineEdit, &QLineEdit::textChanged, this, &PathChooser::rawPathChanged);
    connect(d->lineEdit, &QLineEdit::textChanged, this, &PathChooser::textChanged);
    connect(d->button, &QAbstractButton::clicked, this, &PathChooser::browse);

    d->lineEdit->setLateValidationFunction([this](const QString &text) {
        return whatIsWrong(FilePath::fromUserInput(text), d->kind);
    });
}

PathChooser::~PathChooser()
{
    // The focused line edit finishes editing when QWidget's destructor takes the focus away.
    d->lineEdit->disconnect(this);
}

void PathChooser::setExpectedKind(Kind kind)
{
    if (d->kind == kind)
        return;
    d->kind = kind;
    d->lineEdit->validate();
}

void PathChooser::setPromptDialogTitle(const QString &title)
{
    d->title = title;
}

QString PathChooser::promptDialogTitle() const
{
    return d->title;
}

void PathChooser::setPromptDialogFilter(const QString &filter)
{
    d->filter = filter;
    d->lineEdit->validate();
}

QString PathChooser::promptDialogFilter() const
{
    return d->filter;
}

void PathChooser::setInitialBrowsePathBackup(const FilePath &path)
{
    d->browsePathBackup = path;
}

void PathChooser::setHistoryCompleter(const Key &historyKey, bool restoreLastItemFromHistory)
{
    d->lineEdit->setHistoryCompleter(historyKey, restoreLastItemFromHistory);
}

void PathChooser::setToolTip(const QString &toolTip)
{
    d->lineEdit->setToolTip(toolTip);
}

void PathChooser::setValidationFunction(const FancyLineEdit::ValidationFunction &function)
{
    d->lineEdit->setValidationFunction(function);
}

FilePath PathChooser::filePath() const
{
    return FilePath::fromUserInput(d->lineEdit->text());
}

bool PathChooser::isValid() const
{
    return d->lineEdit->isValid();
}

QString PathChooser::errorMessage() const
{
    return d->lineEdit->errorMessage();
}

FancyLineEdit *PathChooser::lineEdit() const
{
    return d->lineEdit;
}

QAbstractButton *PathChooser::buttonAtIndex(int index) const
{
    return index == 0 ? d->button : nullptr;
}

void PathChooser::triggerChanged()
{
    d->lineEdit->validate();
}

void PathChooser::setFilePath(const FilePath &path)
{
    d->lineEdit->setText(path.toUserOutput());
}

/// Where browsing starts: a present file or folder is preselected.
FilePath PathChooser::browseStart() const
{
    const FilePath path = filePath().absoluteFilePath();
    if (path.exists())
        return path;
    const FilePath folder = path.parentDir();
    if (folder.isDir())
        return d->kind == SaveFile ? path : folder;
    return d->browsePathBackup.exists() ? d->browsePathBackup
                                        : FilePath::fromString(QDir::homePath());
}

QString PathChooser::askForPath()
{
    const QString start = browseStart().toFSPathString();
    const auto titleOr = [this](const QString &fallback) {
        return d->title.isEmpty() ? fallback : d->title;
    };
    switch (d->kind) {
    case ExistingDirectory:
    case Directory:
        return QFileDialog::getExistingDirectory(this, titleOr(tr("Choose Directory")), start);
    case SaveFile:
        // Nothing is written here, so a file that is there is no reason to ask.
        return QFileDialog::getSaveFileName(this,
                                            titleOr(tr("Choose File")),
                                            start,
                                            d->filter,
                                            nullptr,
                                            QFileDialog::DontConfirmOverwrite);
    case File:
        return QFileDialog::getOpenFileName(this, titleOr(tr("Choose File")), start, d->filter);
    }
    return {};
}

void PathChooser::browse()
{
    const QPointer<PathChooser> self(this);
    const QString chosen = askForPath();
    if (!self || chosen.isEmpty())
        return; // destroyed while the dialog was open, or canceled

    setFilePath(FilePath::fromUserInput(chosen));
    emit d->lineEdit->editingFinished(); // a choice is as final as what was typed
}

} // namespace Utils
