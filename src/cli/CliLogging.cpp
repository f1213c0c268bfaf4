#include "cli/CliLogging.h"

Q_LOGGING_CATEGORY(lcCli, "brenvik.cli", QtInfoMsg)
