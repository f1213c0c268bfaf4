#include "sessionlog/UsageFigures.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <algorithm>
#include <cmath>

namespace brenvik {

namespace {

// Token counts and Unix seconds beyond this are no real figures.
constexpr double kMaxCount = 1e15;
// The figures fit in a few hundred bytes; anything far larger is not Codex's.
constexpr qsizetype kMaxRawSize = 16 * 1024;

std::optional<QJsonObject> objectOf(QByteArrayView raw) {
    if (raw.isEmpty() || raw.size() > kMaxRawSize || raw.front() != '{')
        return std::nullopt;
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(raw.toByteArray(), &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return std::nullopt;
    return document.object();
}

// A whole, non-negative count; nothing for anything else.
std::optional<qint64> countOf(const QJsonValue& value) {
    if (!value.isDouble())
        return std::nullopt;
    const double number = value.toDouble();
    if (!std::isfinite(number) || number < 0 || number > kMaxCount || std::floor(number) != number)
        return std::nullopt;
    return qint64(number);
}

std::optional<qint64> totalTokensOf(const QJsonValue& usage) {
    return usage.isObject() ? countOf(usage.toObject().value(QLatin1StringView("total_tokens")))
                            : std::nullopt;
}

QString textOf(const QJsonValue& value) {
    return value.isString() ? value.toString().left(64) : QString();
}

// A window, or nothing where it is null; `ok` false where it does not parse.
std::optional<RateLimitWindow> windowOf(const QJsonValue& value, bool& ok) {
    if (value.isNull() || value.isUndefined())
        return std::nullopt;
    if (!value.isObject()) {
        ok = false;
        return std::nullopt;
    }
    const QJsonObject window = value.toObject();
    const QJsonValue used = window.value(QLatin1StringView("used_percent"));
    const double percent = used.isDouble() ? used.toDouble() : -1;
    if (!std::isfinite(percent) || percent < 0 || percent > 100) {
        ok = false;
        return std::nullopt;
    }
    RateLimitWindow result{.usedPercent = percent, .windowMinutes = {}, .resetsAt = {}};
    const QJsonValue minutes = window.value(QLatin1StringView("window_minutes"));
    const QJsonValue resets = window.value(QLatin1StringView("resets_at"));
    if (!minutes.isNull() && !minutes.isUndefined()) {
        result.windowMinutes = countOf(minutes);
        if (!result.windowMinutes || *result.windowMinutes == 0) {
            ok = false;
            return std::nullopt;
        }
    }
    if (!resets.isNull() && !resets.isUndefined()) {
        const auto seconds = countOf(resets);
        if (!seconds || *seconds > 253402300799) { // 9999-12-31
            ok = false;
            return std::nullopt;
        }
        result.resetsAt = QDateTime::fromSecsSinceEpoch(*seconds, Qt::UTC);
    }
    return result;
}

} // namespace

std::optional<TokenUsage> parseTokenUsage(QByteArrayView rawInfo) {
    const auto info = objectOf(rawInfo);
    if (!info)
        return std::nullopt;
    const auto total = totalTokensOf(info->value(QLatin1StringView("total_token_usage")));
    const auto last = totalTokensOf(info->value(QLatin1StringView("last_token_usage")));
    if (!total || !last)
        return std::nullopt;
    TokenUsage usage{.totalTokens = *total, .contextTokens = *last, .modelContextWindow = {}};
    const QJsonValue window = info->value(QLatin1StringView("model_context_window"));
    if (!window.isNull() && !window.isUndefined()) {
        usage.modelContextWindow = countOf(window);
        if (!usage.modelContextWindow || *usage.modelContextWindow == 0)
            return std::nullopt;
    }
    return usage;
}

std::optional<RateLimits> parseRateLimits(QByteArrayView rawRateLimits,
                                          const QDateTime& observedAt) {
    const auto limits = objectOf(rawRateLimits);
    if (!limits)
        return std::nullopt;
    bool ok = true;
    RateLimits result{.primary = windowOf(limits->value(QLatin1StringView("primary")), ok),
                      .secondary = windowOf(limits->value(QLatin1StringView("secondary")), ok),
                      .planType = textOf(limits->value(QLatin1StringView("plan_type"))),
                      .reachedType =
                          textOf(limits->value(QLatin1StringView("rate_limit_reached_type"))),
                      .observedAt = observedAt};
    if (!ok || (!result.primary && !result.secondary))
        return std::nullopt;
    return result;
}

std::optional<int> contextLeftPercent(const TokenUsage& usage) {
    if (!usage.modelContextWindow || *usage.modelContextWindow <= 0)
        return std::nullopt;
    const double left =
        100.0 * (1.0 - double(usage.contextTokens) / double(*usage.modelContextWindow));
    return int(std::clamp(std::floor(left), 0.0, 100.0));
}

} // namespace brenvik
