#include "detection/PsProcessTable.h"
