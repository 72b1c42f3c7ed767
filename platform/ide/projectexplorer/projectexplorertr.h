#pragma once

#include <QCoreApplication>

namespace ProjectExplorer {

struct Tr
{
    Q_DECLARE_TR_FUNCTIONS(QtC::ProjectExplorer)
};

} // namespace ProjectExplorer
