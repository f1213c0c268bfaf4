#pragma once

#include "monitor/AccountLimits.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>

namespace brenvik {

// One notice about the plan's limits: "Codex 5 h limit at 92 % · resets 19:20".
struct LimitNotice {
    QString summary;
    QString body; // the whole limits line

    friend bool operator==(const LimitNotice&, const LimitNotice&) = default;
};

// Announces each window of each CODEX_HOME once when it passes 90 % and once
// when it is reached (100 %, or Codex reports a limit reached while it is the
// nearer one), again only after its reset time passed. Nothing when turned off,
// and what was so while off is not announced later.
class LimitNoticePolicy {
public:
    static constexpr double kNearPercent = 90;

    [[nodiscard]] QList<LimitNotice> update(const QList<AccountLimits>& accounts, bool enabled,
                                            const QDateTime& now);

private:
    enum class Stage { none, near, reached };
    struct Announced {
        Stage stage = Stage::none;
        std::optional<QDateTime> resetsAt; // of the period it was announced in
    };
    QHash<QString, Announced> m_announced; // by CODEX_HOME and window
};

} // namespace brenvik
