#include "words.h"

#include "failure.h"

static const std::string END_OF_OPTIONS = "--";

std::string Words::takeCommand()
{
    if (isAtEnd())
        throw UsageError("no command given");
    return m_words[m_next++];
}

std::string Words::takeOption()
{
    if (isAtEnd() || !m_words[m_next].starts_with('-') || m_words[m_next] == END_OF_OPTIONS)
        return {};
    return m_words[m_next++];
}

bool Words::take(const std::string &word)
{
    const bool isNext = !isAtEnd() && m_words[m_next] == word;
    m_next += isNext ? 1 : 0;
    return isNext;
}

std::string Words::takePath(const std::string &option)
{
    std::string path = takePathOrNothing(option);
    if (path.empty())
        throw UsageError(option + " needs a path");
    return path;
}

std::string Words::takePathOrNothing(const std::string &option)
{
    if (isAtEnd())
        throw UsageError(option + " needs a path");
    return m_words[m_next++];
}

std::vector<std::string> Words::takePackages()
{
    take(END_OF_OPTIONS);
    if (isAtEnd())
        throw UsageError("no packages given");
    const auto first = m_words.begin() + static_cast<std::ptrdiff_t>(m_next);
    m_next = m_words.size();
    return {first, m_words.end()};
}
