#include "sessionlog/SessionLogCache.h"

#include "detection/FailureLog.h"
#include "sessionlog/SessionLogLogging.h"

namespace brenvik {

SessionLogState SessionLogCache::stateOf(const QString& path) noexcept {
    try {
        return m_readers.try_emplace(path, path).first->second.update();
    } catch (...) {
        // Out of memory at worst.
        logFailureOnce(lcSessionLog(), QStringLiteral("cache:") + path,
                       QStringLiteral("no room to follow the session log %1").arg(path));
        return {};
    }
}

void SessionLogCache::retainOnly(const QSet<QString>& paths) {
    std::erase_if(m_readers, [&paths](const auto& entry) { return !paths.contains(entry.first); });
}

} // namespace brenvik
