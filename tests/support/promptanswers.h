#pragma once

#include <QObject>
#include <QStringList>
#include <QTimer>

/// Plays the user at pass-phrase prompts: types the next answer and presses OK, or, for a null
/// string and when there are no more answers, presses Escape.
class PromptAnswers : public QObject
{
public:
    explicit PromptAnswers(const QStringList &answers);

    /// The labels of the dialogs that came up.
    QStringList prompts() const { return m_prompts; }

private:
    void answer();

    QStringList m_answers;
    QStringList m_prompts;
    QTimer m_timer;
};
