#include "detection/DetectionLogging.h"

Q_LOGGING_CATEGORY(lcDetection, "brenvik.detection", QtInfoMsg)
