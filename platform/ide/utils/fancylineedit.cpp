#include <utils/fancylineedit.h>

#include <utils/qtcsettings.h>
#include <utils/theme/theme.h>

#include <QCompleter>
#include <QStringListModel>

namespace Utils {

constexpr int MAX_HISTORY_ENTRIES = 10;

static bool acceptsInput(const FancyLineEdit *edit, QString *)
{
    return edit->hasAcceptableInput();
}

class FancyLineEdit::Private
{
public:
    SynchronousValidationFunction validation = acceptsInput;
    LateValidationFunction lateValidation; // in force where it is set
    std::unique_ptr<QObject> lateVerdict;
    State state = Invalid;
    QString errorMessage;
    bool hasShownReason = false;
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
    return d->state;
}

bool FancyLineEdit::isValid() const
{
    return d->state == Valid;
}

QString FancyLineEdit::errorMessage() const
{
    return d->errorMessage;
}

void FancyLineEdit::setValidationFunction(const ValidationFunction &function)
{
    d->validation = std::get<SynchronousValidationFunction>(function);
    d->lateValidation = {};
    validate();
}

void FancyLineEdit::setLateValidationFunction(const LateValidationFunction &function)
{
    d->lateValidation = function;
    validate();
}

void FancyLineEdit::validate()
{
    if (d->lateValidation) {
        validateLater();
        return;
    }
    QString reason;
    const bool isAccepted = d->validation(this, &reason);
    showVerdict(text(), isAccepted, isAccepted ? QString() : reason);
}

void FancyLineEdit::validateLater()
{
    const QString judged = text();
    const QString reason = d->lateValidation(judged);
    const auto tell = [this, judged, reason] { showVerdict(judged, reason.isEmpty(), reason); };
    d->lateVerdict = std::make_unique<QObject>(); // the one before it, if any, is not told any more
    QMetaObject::invokeMethod(d->lateVerdict.get(), tell, Qt::QueuedConnection);
}

void FancyLineEdit::showVerdict(const QString &judgedText, bool isAccepted, const QString &reason)
{
    const bool wasValid = isValid();
    const bool showsPlaceholder = judgedText.isEmpty() && !placeholderText().isEmpty();
    d->state = showsPlaceholder ? DisplayingPlaceholderText : isAccepted ? Valid : Invalid;
    d->errorMessage = reason;
    d->hasShownReason |= !isAccepted;
    if (d->hasShownReason)
        setToolTip(reason);

    QPalette colors;
    if (d->state == Invalid)
        colors.setColor(
            QPalette::Active, QPalette::Text, creatorTheme()->color(Theme::TextColorError));
    setPalette(colors);
    if (isValid() != wasValid)
        emit validChanged(isValid());
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
    if (!d->history || !isValid() || text().isEmpty())
        return;
    rememberInHistory(d->historyKey, text());
    d->history->setStringList(storedHistory(d->historyKey));
}

} // namespace Utils
