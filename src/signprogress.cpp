#include "signprogress.h"

#include "signtool.h"

#include <coreplugin/icore.h>

#include <QFileInfo>
#include <QLabel>
#include <QMainWindow>

#include <chrono>

namespace Sealkit::Internal {

constexpr std::chrono::milliseconds SHOW_DELAY{1'000};
constexpr qsizetype MAX_SHOWN_PACKAGES = 5;

SignProgress::SignProgress(SignTool *tool, const QStringList &packages)
    : m_tool(tool)
    , m_packages(packages)
{
    if (!Core::ICore::mainWindow())
        return;
    m_heldInput = std::make_unique<HeldInput>();
    connect(&m_timer, &QTimer::timeout, this, &SignProgress::showWindow);
    m_timer.start(SHOW_DELAY);
}

SignProgress::~SignProgress()
{
    delete m_window;
}

static QString labelText(const QStringList &packages)
{
    QStringList lines{SignProgress::tr("Signing packages:")};
    for (const QString &package : packages.first(qMin(packages.size(), MAX_SHOWN_PACKAGES)))
        lines << QFileInfo(package).fileName();
    if (packages.size() > MAX_SHOWN_PACKAGES)
        lines << QStringLiteral("...");
    return lines.join(QLatin1Char('\n'));
}

void SignProgress::showWindow()
{
    // This window would cover a prompt for the pass phrase and block it.
    if (m_heldInput->isModalWindowOpen())
        return;
    m_timer.stop();

    auto *label = new QLabel(labelText(m_packages));
    label->setTextFormat(Qt::PlainText);
    m_window = new QProgressDialog(Core::ICore::dialogParent());
    m_window->setLabel(label);
    m_window->setRange(0, 0); // busy
    m_window->setWindowTitle(tr("Signing RPM Packages"));
    m_window->setWindowModality(Qt::ApplicationModal);
    const auto stop = [this] {
        if (m_tool)
            m_tool->setStopped(true);
    };
    connect(m_window, &QProgressDialog::canceled, this, stop);
    // While the window is not active yet, Escape is no shortcut of its button and only rejects it.
    connect(m_window, &QProgressDialog::rejected, this, stop);
    m_window->show();
}

} // namespace Sealkit::Internal
