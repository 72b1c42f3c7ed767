#pragma once

#include <QtGlobal>

#if defined(VEYRAOS_LIBRARY)
#define VEYRAOS_EXPORT Q_DECL_EXPORT
#else
#define VEYRAOS_EXPORT Q_DECL_IMPORT
#endif
