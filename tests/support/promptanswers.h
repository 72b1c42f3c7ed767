#pragma once

#include <QObject>
#include <QStringList>
#include <QTimer>

#include <chrono>

/// At the end of an answer: the key that declines after all.
constexpr QChar ESCAPE(0x1b);

/// Plays the user at pass-phrase prompts: types the next answer and presses OK, or Escape if the
/// answer ends with it, is null or not there any more.
class PromptAnswers : public QObject
{
public:
    /// Looks for a prompt every \a interval.
    explicit PromptAnswers(const QStringList &answers,
                           std::chrono::milliseconds interval = std::chrono::milliseconds(5));

    /// The labels of the dialogs that came up.
    QStringList prompts() const { return m_prompts; }
    /// What else stood in each of them, notes before errors, with blanks between.
    QStringList hints() const { return m_hints; }

private:
    void answer();

    QStringList m_answers;
    QStringList m_prompts;
    QStringList m_hints;
    QTimer m_timer;
};
