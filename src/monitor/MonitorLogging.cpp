#include "monitor/MonitorLogging.h"

Q_LOGGING_CATEGORY(lcMonitor, "brenvik.monitor", QtInfoMsg)
