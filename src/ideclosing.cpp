#include "ideclosing.h"

#include <coreplugin/icore.h>

namespace Sealkit::Internal {

class ClosingWatch : public QObject
{
public:
    ClosingWatch()
    {
        connect(Core::ICore::instance(), &Core::ICore::coreAboutToClose, this, [this] {
            isClosing = true;
        });
    }

    bool isClosing = false;
};

static ClosingWatch &closingWatch()
{
    static ClosingWatch watch;
    return watch;
}

void watchIdeClosing()
{
    closingWatch().isClosing = false;
}

bool isIdeClosing()
{
    return closingWatch().isClosing;
}

} // namespace Sealkit::Internal
