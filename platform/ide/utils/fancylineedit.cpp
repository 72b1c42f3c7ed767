#include <utils/fancylineedit.h>

#include <utils/qtcsettings.h>
#include <utils/theme/theme.h>

#include <QCompleter>
#include <QStringListModel>

namespace Utils {

constexpr int MAX_HISTORY_ENTRIES = 10;

class FancyLineEdit::Private
{
public:
    SynchronousValidationFunction validation;
    bool valid = true;
    QString errorMessage;
    QString shownReason;
    QString ownToolTip;
    Key historyKey;
    QStringListModel *history = nullptr;
};

static QStringList storedHistory(const Key &key)
{
    return QtcSettings().value(key).toStringList();
}

static void rememberInHistory(const Key &key, const QString &text)
{
    // Read anew: another line edit may have added to the same history in the meantime.
    QStringList entries = storedHistory(key);
    entries.removeAll(text);
    entries.prepend(text);
    QtcSettings().setValue(key, entries.mid(0, MAX_HISTORY_ENTRIES));
}

FancyLineEdit::FancyLineEdit(QWidget *parent)
    : QLineEdit(parent)
    , d(std::make_unique<Private>())
{
    connect(this, &QLineEdit::textChanged, this, &FancyLineEdit::validate);
    connect(this, &QLineEdit::editingFinished, this, &FancyLineEdit::updateHistory);
}

FancyLineEdit::~FancyLineEdit() = default;

FancyLineEdit::State FancyLineEdit::state() const
{
    if (!d->valid)
        return Invalid;
    return text().isEmpty() && !placeholderText().isEmpty() ? DisplayingPlaceholderText : Valid;
}

bool FancyLineEdit::isValid() const
{
    return d->valid;
}

QString FancyLineEdit::errorMessage() const
{
    return d->errorMessage;
}

void FancyLineEdit::setValidationFunction(const ValidationFunction &function)
{
    d->validation = std::get<SynchronousValidationFunction>(function);
    validate();
}

void FancyLineEdit::validate()
{
    QString reason;
    const bool valid = d->validation ? d->validation(this, &reason) : hasAcceptableInput();
    const bool changed = valid != d->valid;
    d->valid = valid;
    d->errorMessage = valid ? QString() : reason;
    showValidity();
    if (changed)
        emit validChanged(valid);
}

void FancyLineEdit::showValidity()
{
    if (toolTip() != d->shownReason)
        d->ownToolTip = toolTip(); // somebody has set another one since
    d->shownReason = d->errorMessage.isEmpty() ? d->ownToolTip : d->errorMessage;
    setToolTip(d->shownReason);

    QPalette colors;
    if (!d->valid) {
        const QColor errorColor = creatorTheme()->color(Theme::TextColorError);
        colors.setColor(QPalette::Active, QPalette::Text, errorColor);
        colors.setColor(QPalette::Inactive, QPalette::Text, errorColor);
    }
    setPalette(colors);
}

void FancyLineEdit::setHistoryCompleter(const Key &historyKey, bool restoreLastItemFromHistory)
{
    d->historyKey = "CompleterHistory/" + historyKey;
    const QStringList entries = storedHistory(d->historyKey);
    d->history = new QStringListModel(entries, this);

    auto completer = new QCompleter(d->history, this);
    completer->setFilterMode(Qt::MatchContains);
    setCompleter(completer);

    if (restoreLastItemFromHistory && text().isEmpty() && !entries.isEmpty())
        setText(entries.first());
}

void FancyLineEdit::updateHistory()
{
    if (!d->history || !d->valid || text().isEmpty())
        return;
    rememberInHistory(d->historyKey, text());
    d->history->setStringList(storedHistory(d->historyKey));
}

} // namespace Utils
