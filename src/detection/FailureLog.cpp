#include "detection/FailureLog.h"

#include <QSet>
#include <mutex>

namespace brenvik {

namespace {

// Bounded, so that endless distinct causes (logs of ever new sessions that all
// fail) cannot grow it; forgetting them all at worst logs each once more.
constexpr qsizetype kMaxCauses = 512;

std::mutex& causesMutex() {
    static std::mutex mutex;
    return mutex;
}

QSet<QString>& loggedCauses() {
    static QSet<QString> causes;
    return causes;
}

} // namespace

void logFailureOnce(const QLoggingCategory& category, const QString& cause,
                    const QString& message) {
    if (!category.isDebugEnabled())
        return;
    {
        const std::scoped_lock lock(causesMutex());
        QSet<QString>& causes = loggedCauses();
        if (causes.contains(cause))
            return;
        if (causes.size() >= kMaxCauses)
            causes.clear();
        causes.insert(cause);
    }
    qCDebug(category).noquote() << message;
}

void failureCleared(const QString& cause) {
    const std::scoped_lock lock(causesMutex());
    loggedCauses().remove(cause);
}

} // namespace brenvik
