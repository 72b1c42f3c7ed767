#include "usersettings.h"

#include "projectexplorertr.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

namespace ProjectExplorer {

constexpr char FORMAT_KEY[] = "FormatVersion";
constexpr int FORMAT_VERSION = 1;

static std::optional<QVariantMap> parse(const QByteArray &contents, QString *errorMessage)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(contents, &error);
    if (error.error != QJsonParseError::NoError) {
        *errorMessage = error.errorString();
        return {};
    }
    QVariantMap settings = document.object().toVariantMap();
    if (settings.take(QLatin1String(FORMAT_KEY)).toInt() != FORMAT_VERSION) {
        *errorMessage = Tr::tr("it has an unknown format version");
        return {};
    }
    return settings;
}

std::optional<QVariantMap> UserSettings::read(const Utils::FilePath &filePath,
                                              QString *errorMessage)
{
    QFile file(filePath.toFSPathString());
    if (!file.exists())
        return QVariantMap();
    if (!file.open(QIODevice::ReadOnly)) {
        *errorMessage = Tr::tr("Cannot read the project's settings \"%1\": %2.")
                            .arg(filePath.toUserOutput(), file.errorString());
        return {};
    }

    QString reason;
    const std::optional<QVariantMap> settings = parse(file.readAll(), &reason);
    if (settings)
        return settings;
    *errorMessage = Tr::tr("Cannot understand the project's settings \"%1\": %2.")
                        .arg(filePath.toUserOutput(), reason);
    return {};
}

bool UserSettings::write(const Utils::FilePath &filePath,
                         const QVariantMap &settings,
                         QString *errorMessage)
{
    QJsonObject object = QJsonObject::fromVariantMap(settings);
    object.insert(QLatin1String(FORMAT_KEY), FORMAT_VERSION);
    QSaveFile file(filePath.toFSPathString());
    if (file.open(QIODevice::WriteOnly)) {
        file.write(QJsonDocument(object).toJson());
        if (file.commit())
            return true;
    }
    *errorMessage = Tr::tr("Cannot write the project's settings \"%1\": %2.")
                        .arg(filePath.toUserOutput(), file.errorString());
    return false;
}

} // namespace ProjectExplorer
