#pragma once

#include <string>
#include <vector>

/// The words of a command line, taken one after the other. What is not understood is a UsageError.
class Words
{
public:
    explicit Words(std::vector<std::string> words)
        : m_words(std::move(words))
    {
    }

    /// The next word, if there is one, is the command.
    std::string takeCommand();
    /// The next word, if it is an option; else an empty text.
    std::string takeOption();
    /// Takes the next word if it is this one.
    bool take(const std::string &word);
    /// The path that stands behind an option.
    std::string takePath(const std::string &option);
    std::string takePathOrNothing(const std::string &option);
    /// All that is left. Behind "--" nothing is an option.
    std::vector<std::string> takePackages();

private:
    bool isAtEnd() const { return m_next == m_words.size(); }

    const std::vector<std::string> m_words;
    std::size_t m_next = 0;
};
