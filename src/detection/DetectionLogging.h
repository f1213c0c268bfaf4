#pragma once

#include <QLoggingCategory>

// Quiet unless debug output is turned on (`--verbose`, or
// QT_LOGGING_RULES="brenvik.*.debug=true").
Q_DECLARE_LOGGING_CATEGORY(lcDetection)
