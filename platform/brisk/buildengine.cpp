#include <brisk/buildengine.h>

#include <QCollator>
#include <QDir>

#include <algorithm>

namespace Brisk {

BuildEngine::BuildEngine(const QString &name, const Utils::FilePath &directory)
    : m_name(name)
    , m_directory(directory)
{
}

void BuildEngine::setSharedSrcPath(const Utils::FilePath &path)
{
    if (m_sharedSrcPath == path)
        return;
    m_sharedSrcPath = path;
    emit sharedSrcPathChanged(path);
}

QStringList BuildEngine::buildTargetOrigins() const
{
    const QDir targets((m_directory / QLatin1String("targets")).toFSPathString());
    QStringList names = targets.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    QCollator collator{QLocale(QLocale::English)}; // the C locale has no numeric mode
    collator.setNumericMode(true);
    std::ranges::sort(names, [&collator](const QString &a, const QString &b) {
        return collator.compare(a, b) > 0;
    });
    return names;
}

BuildTargetData BuildEngine::buildTarget(const QString &name) const
{
    if (!buildTargetOrigins().contains(name))
        return {};
    const Utils::FilePath bin =
        m_directory / QLatin1String("targets") / name / QLatin1String("bin");
    const QDir::Filters executables = QDir::Files | QDir::Executable;
    return {name, QDir(bin.toFSPathString()).entryList(executables, QDir::Name)};
}

} // namespace Brisk
