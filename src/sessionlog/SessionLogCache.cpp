#include "sessionlog/SessionLogCache.h"

namespace brenvik {

SessionLogState SessionLogCache::stateOf(const QString& path) noexcept {
    try {
        return m_readers.try_emplace(path, path).first->second.update();
    } catch (...) {
        return {};
    }
}

void SessionLogCache::retainOnly(const QSet<QString>& paths) {
    std::erase_if(m_readers, [&paths](const auto& entry) { return !paths.contains(entry.first); });
}

} // namespace brenvik
