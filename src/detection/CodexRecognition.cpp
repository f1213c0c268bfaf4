#include "detection/CodexRecognition.h"
