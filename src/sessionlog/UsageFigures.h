#pragma once

#include <QByteArrayView>
#include <QDateTime>
#include <QString>
#include <optional>

namespace brenvik {

// A session's tokens, from the latest token_count that carries them.
struct TokenUsage {
    qint64 totalTokens = 0;                   // used in the session so far
    qint64 contextTokens = 0;                 // in the context after the latest response
    std::optional<qint64> modelContextWindow; // what the model holds at most

    friend bool operator==(const TokenUsage&, const TokenUsage&) = default;
};

// One of the plan's windows: the share of it used and when it starts afresh.
struct RateLimitWindow {
    double usedPercent = 0;              // 0 to 100
    std::optional<qint64> windowMinutes; // 300 for the 5-hour window
    std::optional<QDateTime> resetsAt;   // UTC

    friend bool operator==(const RateLimitWindow&, const RateLimitWindow&) = default;
};

// The account's limits as one model response reported them.
struct RateLimits {
    std::optional<RateLimitWindow> primary;
    std::optional<RateLimitWindow> secondary;
    QString planType;     // empty where unknown
    QString reachedType;  // Codex's rate_limit_reached_type; empty while none is reached
    QDateTime observedAt; // UTC, of the log line

    friend bool operator==(const RateLimits&, const RateLimits&) = default;
};

// Parse a token_count's raw `info` value; nothing where it is null or any
// figure is missing, not a number or beyond belief.
[[nodiscard]] std::optional<TokenUsage> parseTokenUsage(QByteArrayView rawInfo);

// Parse a token_count's raw `rate_limits` value; nothing where it does not
// parse or names neither window.
[[nodiscard]] std::optional<RateLimits> parseRateLimits(QByteArrayView rawRateLimits,
                                                        const QDateTime& observedAt);

// 100 × (1 − tokens in the context / the model's window), rounded down to a
// whole percent and kept within 0 to 100; nothing without a window.
[[nodiscard]] std::optional<int> contextLeftPercent(const TokenUsage& usage);

} // namespace brenvik
