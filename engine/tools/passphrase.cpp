#include "passphrase.h"

#include "files.h"
#include "interruption.h"

#include <cerrno>
#include <fcntl.h>
#include <openssl/crypto.h>
#include <optional>
#include <termios.h>

// No echo of what is typed while the object exists. What was typed before is kept.
class QuietTerminal
{
public:
    explicit QuietTerminal(int terminal)
        : m_terminal(terminal)
    {
        termios quiet;
        if (tcgetattr(m_terminal, &quiet) != 0)
            return;
        m_original = quiet;
        quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(m_terminal, TCSANOW, &quiet);
    }
    ~QuietTerminal()
    {
        if (m_original)
            tcsetattr(m_terminal, TCSANOW, &*m_original);
    }
    QuietTerminal(const QuietTerminal &) = delete;
    QuietTerminal &operator=(const QuietTerminal &) = delete;

private:
    const int m_terminal;
    std::optional<termios> m_original;
};

PassPhrase::~PassPhrase()
{
    OPENSSL_cleanse(m_text.data(), m_text.size());
}

const char *PassPhrase::text()
{
    if (!m_isAsked) {
        m_isAsked = true;
        m_isGiven = ask();
    }
    return m_isGiven ? m_text.data() : nullptr;
}

bool PassPhrase::ask()
{
    const Descriptor terminal(open("/dev/tty", O_RDWR | O_CLOEXEC));
    const int input = terminal.isOpen() ? terminal.number() : STDIN_FILENO;
    const int output = terminal.isOpen() ? terminal.number() : STDERR_FILENO;
    const QuietTerminal quiet(input);
    writeAll(output, m_prompt);
    const bool isRead = readLine(input);
    writeAll(output, "\n");
    return isRead;
}

bool PassPhrase::readLine(int terminal)
{
    std::size_t size = 0;
    char byte = '\0';
    ssize_t count = 0;
    while ((count = read(terminal, &byte, 1)) == 1 && byte != '\n') {
        if (size < m_text.size())
            m_text[size] = byte;
        ++size;
    }
    const bool isLine = count == 1 || (count == 0 && size > 0);
    const bool fits = size < m_text.size();
    OPENSSL_cleanse(&byte, 1);
    m_text[fits ? size : 0] = '\0';
    return isLine && fits && !Interruption::isDue();
}
