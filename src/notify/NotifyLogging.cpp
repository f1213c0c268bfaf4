#include "notify/NotifyLogging.h"

Q_LOGGING_CATEGORY(lcNotify, "brenvik.notify", QtInfoMsg)
