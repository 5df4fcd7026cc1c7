#include "HostLog.h"

Q_LOGGING_CATEGORY(lcHostPlatform, "usbi.platform")
