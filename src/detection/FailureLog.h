#pragma once

#include <QLoggingCategory>
#include <QString>

namespace brenvik {

// A failure that Brenvik gets over (an unreadable log, a tmux that does not
// answer) repeats at every refresh while its cause lasts. It is logged the first
// time only, at debug level, and again only after the cause has cleared.
// `cause` names it (what failed and where, not when); safe from any thread.
void logFailureOnce(const QLoggingCategory& category, const QString& cause, const QString& message);
void failureCleared(const QString& cause);

} // namespace brenvik
