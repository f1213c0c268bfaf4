#include "monitor/ProcessMonitoring.h"
