#include "sessionlog/SessionLogLogging.h"

Q_LOGGING_CATEGORY(lcSessionLog, "brenvik.sessionlog", QtInfoMsg)
