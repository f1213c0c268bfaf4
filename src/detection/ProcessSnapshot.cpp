#include "detection/ProcessSnapshot.h"
