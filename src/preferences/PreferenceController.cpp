#include "preferences/PreferenceController.h"

#include "monitor/Published.h"

namespace brenvik {

void PreferenceController::setLastError(std::optional<QString> error) {
    publish(this, m_lastError, std::move(error), &PreferenceController::lastErrorChanged);
}

} // namespace brenvik
