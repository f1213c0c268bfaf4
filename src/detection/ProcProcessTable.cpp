#include "detection/ProcProcessTable.h"
