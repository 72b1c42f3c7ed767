#pragma once

#include <utils/filepath.h>

#include <functional>

namespace Utils::FileUtils {

/// Copies one file; false stops the whole copy.
using CopyHelper =
    std::function<bool(const FilePath &source, const FilePath &destination, QString *error)>;

/// A copy helper that asks before it overwrites a file.
class CopyAskingForOverwrite
{
public:
    explicit CopyAskingForOverwrite(const std::function<void(FilePath)> &postOperation = {});
    /// A helper bound to this object, which must outlive it.
    CopyHelper operator()();

private:
    enum class Answer { AskEachTime, AllYes, AllNo };

    bool copyFile(const FilePath &source, const FilePath &destination, QString *error);
    std::function<void(FilePath)> m_postOperation;
    Answer m_answer = Answer::AskEachTime;
};

/// Copies a file, or a folder with all it holds; missing parent folders are made.
/// On failure \a error says what could not be copied.
bool copyRecursively(const FilePath &source,
                     const FilePath &destination,
                     QString *error,
                     CopyHelper helper);

} // namespace Utils::FileUtils
