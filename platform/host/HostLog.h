#ifndef HOSTLOG_H
#define HOSTLOG_H

#include <QLoggingCategory>

// The host implementation's diagnostics: unreadable stores, unwritable logs, a missing key.
// QT_LOGGING_RULES="usbi.platform.debug=false" silences them.
Q_DECLARE_LOGGING_CATEGORY(lcHostPlatform)

#endif
