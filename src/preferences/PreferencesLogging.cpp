#include "preferences/PreferencesLogging.h"

Q_LOGGING_CATEGORY(lcPreferences, "brenvik.preferences", QtInfoMsg)
