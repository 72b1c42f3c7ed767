#pragma once

#include <utils/filepath.h>
#include <utils/storekey.h>

#include <QWidget>

#include <memory>

namespace Utils {
class PathChooser;
}

class QComboBox;
class Ui_SignOptionsWidget;

namespace Sealkit::Internal {

/// Edits the global signing options: whether new rpmsign-external steps start enabled, and the key
/// and certificate that they use. The workspace is that of the first build engine.
class SignOptionsWidget : public QWidget
{
    Q_OBJECT

public:
    /// Shows the stored options.
    SignOptionsWidget();
    ~SignOptionsWidget() override;

    void store() const;
    /// Whether \a path lies in the workspace; otherwise \a error is a text for the user. An empty
    /// path lies nowhere.
    bool verifyPath(const QString &path, QString *error) const;
    /// All texts of the page without their mnemonics, one per line.
    QString searchKeywords() const;

private:
    /// The regular file of the SDK, or a custom one.
    struct FileChoice
    {
        QComboBox *comboBox = nullptr;
        Utils::PathChooser *chooser = nullptr;
        const char *pathKey = nullptr;       ///< in the settings
        const char *useDefaultKey = nullptr; ///< in the settings
        Utils::FilePath defaultPath = {};
        Utils::FilePath lastCustomPath = {};
        bool useDefault = true; ///< which is then what the chooser shows
    };

    void initFileChoice(const FileChoice &choice,
                        const QString &toolTip,
                        const Utils::Key &historyKey,
                        const QStringList &items);
    void restore();
    void showFile(FileChoice &choice, int index);
    QString problemOf(const FileChoice &choice) const;
    void updateKeyNote();
    void updateCertificateNote();
    void keyChooserChanged(int index);
    void certificateChooserChanged(int index);
    void enableComboBoxes(bool enabled);
    void enablePathChoosers(bool enabled);
    void updatePathChoosers();
    void updateDefaultsKeys(const Utils::FilePath &sharedSrcPath);
    void onSharedSrcPathChanged(const Utils::FilePath &sharedSrcPath);

    const std::unique_ptr<Ui_SignOptionsWidget> m_ui;
    Utils::FilePath m_sharedSrcPath;
    FileChoice m_key;
    FileChoice m_certificate;
};

} // namespace Sealkit::Internal
