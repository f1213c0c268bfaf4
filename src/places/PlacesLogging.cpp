#include "places/PlacesLogging.h"

Q_LOGGING_CATEGORY(lcPlaces, "brenvik.places", QtInfoMsg)
