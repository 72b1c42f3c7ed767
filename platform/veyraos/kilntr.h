#pragma once

#include <QCoreApplication>

namespace Kiln {

struct Tr
{
    Q_DECLARE_TR_FUNCTIONS(QtC::VeyraOS)
};

} // namespace Kiln
