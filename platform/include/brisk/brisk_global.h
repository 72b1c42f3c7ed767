#pragma once

#include <QtGlobal>

#if defined(BRISK_LIBRARY)
#define BRISK_EXPORT Q_DECL_EXPORT
#else
#define BRISK_EXPORT Q_DECL_IMPORT
#endif
