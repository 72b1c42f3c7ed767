#pragma once

#include <array>
#include <string>

/// What the user types at a prompt on the terminal, without echo. It is asked for when it is needed
/// first, and wiped out in the end.
class PassPhrase
{
public:
    explicit PassPhrase(const std::string &prompt)
        : m_prompt(prompt)
    {
    }
    ~PassPhrase();
    PassPhrase(const PassPhrase &) = delete;
    PassPhrase &operator=(const PassPhrase &) = delete;

    /// Null when none was given: the input has ended, is too long, or a signal came.
    const char *text();
    bool isAsked() const { return m_isAsked; }
    bool isGiven() const { return m_isGiven; }

private:
    bool ask();
    bool readLine(int terminal);

    const std::string m_prompt;
    std::array<char, 1025> m_text{};
    bool m_isAsked = false;
    bool m_isGiven = false;
};
