#include "detection/ProcessSnapshot.h"

#include "detection/ProcProcessTable.h"
#include "detection/PsProcessTable.h"

#include <QVarLengthArray>
#include <array>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <locale.h>
#include <unistd.h>

namespace brenvik {

ProcessSnapshotError::ProcessSnapshotError(QString domain, qint64 code, QString message)
    : m_domain(std::move(domain))
    , m_code(code)
    , m_message(std::move(message))
    , m_utf8(m_message.toUtf8()) {}

std::unique_ptr<ProcessTableSource> makeDefaultProcessTableSource() {
    // procps ps on Linux reports lifetime averages under %cpu, so /proc is
    // preferred wherever it can be read.
    if (::access("/proc/self/stat", R_OK) == 0)
        return std::make_unique<ProcProcessTableSource>();
    return std::make_unique<PsProcessTableSource>();
}

namespace {

// Optional "+" or "-", then ASCII digits only, within the signed 64-bit range.
std::optional<qint64> parseStrictInteger(QStringView text) {
    qsizetype i = 0;
    bool negative = false;
    if (!text.isEmpty() && (text[0] == u'+' || text[0] == u'-')) {
        negative = text[0] == u'-';
        i = 1;
    }
    if (i == text.size())
        return std::nullopt;
    // Accumulate towards the sign's side so that the minimum value fits.
    qint64 value = 0;
    constexpr qint64 kMin = std::numeric_limits<qint64>::min();
    constexpr qint64 kMax = std::numeric_limits<qint64>::max();
    for (; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        if (c < u'0' || c > u'9')
            return std::nullopt;
        const int digit = c - u'0';
        if (negative) {
            if (value < (kMin + digit) / 10)
                return std::nullopt;
            value = value * 10 - digit;
        } else {
            if (value > (kMax - digit) / 10)
                return std::nullopt;
            value = value * 10 + digit;
        }
    }
    return value;
}

// The C library's text-to-double in the "C" locale, required to consume the
// whole text: optional sign, decimal or hexadecimal ("0x") digits with an
// optional exponent, "inf"/"infinity"/"nan". No white space, no decimal comma.
// Values beyond double's range become infinite or zero, as strtod makes them.
std::optional<double> parseWholeDouble(QStringView text) {
    if (text.isEmpty())
        return std::nullopt;
    QVarLengthArray<char, 64> ascii(text.size() + 1);
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        if (c == 0 || c > 0x7f)
            return std::nullopt;
        ascii[i] = char(c);
    }
    ascii[text.size()] = '\0';
    const char* first = ascii.data();
    const char* const last = ascii.data() + text.size();
    bool negative = false;
    if (*first == '+' || *first == '-') {
        negative = *first == '-';
        ++first;
    }
    if (first == last || *first == '+' || *first == '-')
        return std::nullopt;
    auto format = std::chars_format::general;
    if (last - first > 2 && first[0] == '0' && (first[1] == 'x' || first[1] == 'X')) {
        first += 2;
        format = std::chars_format::hex;
        if (*first == '+' || *first == '-')
            return std::nullopt;
    }
    double value = 0;
    const auto [end, error] = std::from_chars(first, last, value, format);
    if (end != last)
        return std::nullopt;
    if (error == std::errc::result_out_of_range) {
        // Whether it overflowed or underflowed, strtod in the C locale tells.
        static const locale_t cLocale = ::newlocale(LC_ALL_MASK, "C", locale_t(0));
        return ::strtod_l(ascii.data(), nullptr, cLocale);
    }
    if (error != std::errc())
        return std::nullopt;
    return negative ? -value : value;
}

// The common "12", "0.3", "03.45": up to 15 digits with an optional point.
// Both the digits and the power of ten are exact doubles, so one division
// rounds exactly as the full conversion does.
std::optional<double> parseShortDecimal(QStringView text) {
    static constexpr double kPowersOfTen[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                              1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    qint64 digits = 0;
    int count = 0;
    int decimals = -1;
    for (const QChar c : text) {
        if (c == u'.' && decimals < 0) {
            decimals = 0;
        } else if (c >= u'0' && c <= u'9' && count < 15) {
            digits = digits * 10 + (c.unicode() - u'0');
            ++count;
            if (decimals >= 0)
                ++decimals;
        } else {
            return std::nullopt;
        }
    }
    if (count == 0)
        return std::nullopt;
    return decimals > 0 ? double(digits) / kPowersOfTen[decimals] : double(digits);
}

double numberOrZero(QStringView text) {
    if (const auto simple = parseShortDecimal(text))
        return *simple;
    return parseWholeDouble(text).value_or(0.0);
}

qsizetype skipSpace(QStringView text, qsizetype i) {
    while (i < text.size() && text[i].isSpace())
        ++i;
    return i;
}

qsizetype skipWord(QStringView text, qsizetype i) {
    while (i < text.size() && !text[i].isSpace())
        ++i;
    return i;
}

// The states ps prints most often, as static texts that cost no allocation.
QString stateText(QStringView state) {
    static const QString kCommon[] = {
        QStringLiteral("S"),   QStringLiteral("R"),   QStringLiteral("I"),   QStringLiteral("D"),
        QStringLiteral("Z"),   QStringLiteral("T"),   QStringLiteral("U"),   QStringLiteral("Ss"),
        QStringLiteral("S+"),  QStringLiteral("R+"),  QStringLiteral("Ss+"), QStringLiteral("Rs"),
        QStringLiteral("Sl"),  QStringLiteral("Ssl"), QStringLiteral("SN"),  QStringLiteral("S<"),
        QStringLiteral("I<"),  QStringLiteral("Sl+"), QStringLiteral("S<s"), QStringLiteral("SNs"),
        QStringLiteral("R+s"), QStringLiteral("Is"),  QStringLiteral("SW"),  QStringLiteral("IW")};
    for (const QString& common : kCommon) {
        if (common == state)
            return common;
    }
    return state.toString();
}

} // namespace

std::optional<ObservedProcess> parseProcessLine(QStringView line) {
    // Five single words, then the rest of the line as the command. Leading
    // blanks are skipped with the first word and trailing ones trimmed off the
    // command, so the line itself needs no trimming pass.
    std::array<QStringView, 5> words;
    qsizetype at = 0;
    for (auto& word : words) {
        at = skipSpace(line, at);
        if (at == line.size())
            return std::nullopt;
        const qsizetype end = skipWord(line, at);
        word = line.sliced(at, end - at);
        at = end;
    }
    if (at == line.size())
        return std::nullopt;
    const QStringView command = line.sliced(at + 1).trimmed();
    if (command.isEmpty())
        return std::nullopt;

    const auto pid = parseStrictInteger(words[0]);
    const auto ppid = parseStrictInteger(words[1]);
    if (!pid || !ppid)
        return std::nullopt;

    ObservedProcess row;
    row.pid = *pid;
    row.ppid = *ppid;
    row.state = stateText(words[2]);
    row.cpuPercent = numberOrZero(words[3]);
    row.cpuTime = parseCPUTime(words[4]);
    row.command = command.toString();
    return row;
}

double parseCPUTime(QStringView text) {
    text = text.trimmed();
    if (text.isEmpty())
        return 0.0;

    double daySeconds = 0;
    QStringView clock = text;
    // Time texts are a few characters: plain loops beat the general searches.
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'-') {
            daySeconds = numberOrZero(text.first(i)) * 86400;
            clock = text.sliced(i + 1);
            break;
        }
    }

    // Only the last three non-empty ":" pieces count: hours, minutes, seconds.
    std::array<double, 3> last{};
    qsizetype count = 0;
    for (qsizetype begin = 0; begin < clock.size();) {
        qsizetype end = begin;
        while (end < clock.size() && clock[end] != u':')
            ++end;
        if (end > begin) {
            last[0] = last[1];
            last[1] = last[2];
            last[2] = numberOrZero(clock.sliced(begin, end - begin));
            ++count;
        }
        begin = end + 1;
    }
    switch (count) {
    case 0:
        return daySeconds;
    case 1:
        return daySeconds + last[2];
    case 2:
        return daySeconds + (last[1] * 60 + last[2]);
    default:
        return daySeconds + (last[0] * 3600 + last[1] * 60 + last[2]);
    }
}

} // namespace brenvik
