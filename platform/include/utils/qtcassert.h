#pragma once

#include <QtGlobal>

namespace Utils {

/// Reports a failed assertion on the debug channel as `SOFT ASSERT [time]: msg`; never ends the
/// program, unless the environment sets QTC_FATAL_ASSERTS.
void writeAssertLocation(const char *msg);

} // namespace Utils

#define QTC_ASSERT_STRINGIFY_HELPER(x) #x
#define QTC_ASSERT_STRINGIFY(x) QTC_ASSERT_STRINGIFY_HELPER(x)
#define QTC_ASSERT_STRING(cond) \
    ::Utils::writeAssertLocation("\"" cond "\" in " __FILE__ ":" QTC_ASSERT_STRINGIFY(__LINE__))

#define QTC_ASSERT(cond, action) \
    if (Q_LIKELY(cond)) { \
    } else { \
        QTC_ASSERT_STRING(#cond); \
        action; \
    } \
    do { \
    } while (0)
#define QTC_CHECK(cond) \
    if (Q_LIKELY(cond)) { \
    } else { \
        QTC_ASSERT_STRING(#cond); \
    } \
    do { \
    } while (0)
