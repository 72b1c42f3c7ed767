#pragma once

#include <utils/storekey.h>

#include <QLineEdit>

#include <functional>
#include <memory>
#include <variant>

namespace Utils {

/// A line edit that judges its text: what is invalid is written in the error colour, and while it
/// is invalid the reason takes the place of the tool tip.
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
    bool isValid() const;
    QString errorMessage() const;

    void setValidationFunction(const ValidationFunction &function);
    /// Judges the present text again.
    void validate();

    /// Offers what was entered before under \a historyKey; entries live in the IDE's settings.
    /// What the user finished editing joins them if it is valid.
    void setHistoryCompleter(const Key &historyKey, bool restoreLastItemFromHistory = false);

signals:
    void validChanged(bool valid);

private:
    void showValidity();
    void updateHistory();

    class Private;
    const std::unique_ptr<Private> d;
};

} // namespace Utils
