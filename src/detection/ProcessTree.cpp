#include "detection/ProcessTree.h"
