#include "app/AppLogging.h"

Q_LOGGING_CATEGORY(lcApp, "brenvik.app", QtInfoMsg)
