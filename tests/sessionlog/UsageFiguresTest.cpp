#include "SessionLogTestSupport.h"
#include "sessionlog/SessionLogReader.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {

using namespace test;

QByteArray tokenCountLine(int second, const QByteArray& info, const QByteArray& rateLimits) {
    return line(second, "event_msg",
                R"({"type":"token_count","info":)" + info + R"(,"rate_limits":)" + rateLimits +
                    "}");
}

QByteArray info(const QByteArray& total, const QByteArray& last, const QByteArray& window) {
    return R"({"total_token_usage":{"input_tokens":1,"total_tokens":)" + total +
           R"(},"last_token_usage":{"total_tokens":)" + last + R"(},"model_context_window":)" +
           window + "}";
}

QByteArray limits(const QByteArray& primary, const QByteArray& secondary = "null",
                  const QByteArray& rest = R"("plan_type":"plus","rate_limit_reached_type":null)") {
    return R"({"limit_id":"codex","primary":)" + primary + R"(,"secondary":)" + secondary +
           R"(,"credits":null,)" + rest + "}";
}

// The figures as the cases state them.
std::string brief(const SessionLogState& state) {
    QString text;
    if (state.tokens) {
        text += QString::number(state.tokens->totalTokens) + u" tokens";
        if (const auto left = contextLeftPercent(*state.tokens))
            text += u", " + QString::number(*left) + u"% left";
    }
    if (state.rateLimits) {
        const auto window = [](const std::optional<RateLimitWindow>& w) -> QString {
            if (!w)
                return QStringLiteral("-");
            return QString::number(w->usedPercent) + u'/' +
                   (w->windowMinutes ? QString::number(*w->windowMinutes) : u"?"_qs) + u'/' +
                   (w->resetsAt ? QString::number(w->resetsAt->toSecsSinceEpoch()) : u"?"_qs);
        };
        text += u" limits " + window(state.rateLimits->primary) + u' ' +
                window(state.rateLimits->secondary) + u' ' + state.rateLimits->planType + u' ' +
                state.rateLimits->reachedType + u'@' +
                QString::number(timeAt(0).secsTo(state.rateLimits->observedAt));
    }
    return text.toStdString();
}

// Each case's figures follow figures that parse (100 tokens of 1000, 5 h at
// 10 %): what does not parse leaves those standing.
TEST(UsageFigures, HostileAndRealFigures) {
    const QByteArray good = tokenCountLine(
        2, info("100", "100", "1000"),
        limits(R"({"used_percent":10,"window_minutes":300,"resets_at":1900000000})"));
    const std::string before = "100 tokens, 90% left limits 10/300/1900000000 - plus @2";
    const QByteArray primary42 =
        R"({"used_percent":42.5,"window_minutes":300,"resets_at":1900000100})";
    const struct {
        const char* name;
        QByteArray line;
        std::string expected;
    } cases[] = {
        {"both figures",
         tokenCountLine(
             3, info("500", "250", "1000"),
             limits(primary42,
                    R"({"used_percent":13,"window_minutes":10080,"resets_at":1900500000})",
                    R"("plan_type":"pro","rate_limit_reached_type":"rate_limit_reached")")),
         "500 tokens, 75% left limits 42.5/300/1900000100 13/10080/1900500000 pro "
         "rate_limit_reached@3"},
        {"response opened: info null, no windows", tokenCountLine(3, "null", limits("null")),
         before},
        {"no window: unknown context", tokenCountLine(3, info("7", "7", "null"), limits("null")),
         "7 tokens limits 10/300/1900000000 - plus @2"},
        {"context beyond the window", tokenCountLine(3, info("9", "5000", "1000"), "null"),
         "9 tokens, 0% left limits 10/300/1900000000 - plus @2"},
        {"window without reset time or length",
         tokenCountLine(3, "null", limits(R"({"used_percent":96})")),
         "100 tokens, 90% left limits 96/?/? - plus @3"},
        {"tokens as strings", tokenCountLine(3, info(R"("5")", "5", "1000"), "null"), before},
        {"negative tokens", tokenCountLine(3, info("-5", "5", "1000"), "null"), before},
        {"fractional tokens", tokenCountLine(3, info("5.5", "5", "1000"), "null"), before},
        {"huge tokens", tokenCountLine(3, info("1e300", "5", "1000"), "null"), before},
        {"zero window", tokenCountLine(3, info("5", "5", "0"), "null"), before},
        {"total missing", tokenCountLine(3, R"({"last_token_usage":{"total_tokens":1}})", "null"),
         before},
        {"info an array", tokenCountLine(3, "[1,2]", "null"), before},
        {"percent as a string",
         tokenCountLine(3, "null", limits(R"({"used_percent":"42","window_minutes":300})")),
         before},
        {"percent over 100", tokenCountLine(3, "null", limits(R"({"used_percent":1e9})")), before},
        {"percent null", tokenCountLine(3, "null", limits(R"({"used_percent":null})")), before},
        {"percent NaN", tokenCountLine(3, "null", limits(R"({"used_percent":NaN})")), before},
        {"reset time huge",
         tokenCountLine(3, "null", limits(R"({"used_percent":5,"resets_at":1e30})")), before},
        {"window minutes negative",
         tokenCountLine(3, "null", limits(R"({"used_percent":5,"window_minutes":-300})")), before},
        {"one good window, one broken",
         tokenCountLine(3, "null", limits(primary42, R"({"used_percent":true})")), before},
        {"rate_limits a string", tokenCountLine(3, "null", R"("full")"), before},
        {"payload cut off", tokenCountLine(3, info("5", "5", "1000"), "null").chopped(10) + "\n",
         before},
    };
    for (const auto& c : cases) {
        for (const bool byLine : {false, true}) {
            const LogFile log;
            log.append(sessionMeta(0) + taskStarted(1) + good);
            SessionLogReader reader(log.path());
            if (byLine)
                (void)reader.update();
            log.append(c.line);
            EXPECT_EQ(brief(reader.update()), c.expected) << c.name << (byLine ? ", by line" : "");
        }
    }
}

} // namespace
} // namespace brenvik
