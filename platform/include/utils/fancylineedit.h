#pragma once

#include <utils/storekey.h>

#include <QLineEdit>

#include <functional>
#include <memory>
#include <variant>

namespace Utils {

/// A line edit that judges its text: what is invalid is written in the error colour, and the reason
/// takes the place of the tool tip, which is gone from then on.
class FancyLineEdit : public QLineEdit
{
    Q_OBJECT

public:
    enum State { Invalid, DisplayingPlaceholderText, Valid };

    using SynchronousValidationFunction =
        std::function<bool(FancyLineEdit *edit, QString *errorMessage)>;
    using ValidationFunction = std::variant<SynchronousValidationFunction>;

    explicit FancyLineEdit(QWidget *parent = nullptr);
    ~FancyLineEdit() override;

    State state() const;
    /// Not where the placeholder text shows, whatever the function says.
    bool isValid() const;
    QString errorMessage() const;

    /// Judges the present text. A verdict that is still on its way comes nonetheless.
    void setValidationFunction(const ValidationFunction &function);
    /// Judges the present text again.
    void validate();

    /// Offers what was entered before under \a historyKey; entries live in the IDE's settings.
    /// What the user finished editing joins them if it is valid.
    void setHistoryCompleter(const Key &historyKey, bool restoreLastItemFromHistory = false);

signals:
    void validChanged(bool valid);

private:
    friend class PathChooser;
    /// What is wrong with a text; empty when nothing is.
    using LateValidationFunction = std::function<QString(const QString &text)>;

    /// From now on verdicts come when the event loop turns.
    void setLateValidationFunction(const LateValidationFunction &function);
    void validateLater();
    void showVerdict(const QString &judgedText, bool isAccepted, const QString &reason);
    void updateHistory();

    class Private;
    const std::unique_ptr<Private> d;
};

} // namespace Utils
