// The ps source and the parsers of both sources.
#include "detection/ProcessSnapshot.h"

#include "DetectionTestSupport.h"
#include "detection/ProcProcessTable.h"
#include "detection/PsProcessTable.h"

#include <QFile>
#include <cerrno>
#include <gtest/gtest.h>
#include <limits>

namespace brenvik {
namespace {

using test::row;

TEST(ProcessLineParsing, Cases) {
    const struct {
        const char* name;
        const char16_t* line;
        std::optional<ObservedProcess> expected;
    } cases[] = {
        {"columns and inner white space kept",
         u"  501   1 Ss     0.0   0:01.23 /usr/local/bin/codex  exec --help  ",
         row(501, 1, u"/usr/local/bin/codex  exec --help", 0.0, 1.23, u"Ss")},
        {"tabs and Unicode spaces separate, NBSP trimmed",
         u"7\t\u3000 3 R+\u20031.5 1:00 a\tb\u00a0", row(7, 3, u"a\tb", 1.5, 60, u"R+")},
        {"five columns and trailing blanks", u"501 1 Ss 0.0 0:01.23   ", std::nullopt},
        {"pid with a trailing letter", u"12a 1 S 0.0 0:00.00 x", std::nullopt},
        {"pid with two signs", u"+-12 1 S 0.0 0:00.00 x", std::nullopt},
        {"non-ASCII digits", u"\u0661\u0662 1 S 0.0 0:00.00 x", std::nullopt},
        {"pid beyond 64 bits", u"9223372036854775808 1 S 0.0 0:00.00 x", std::nullopt},
        {"ppid below 64 bits", u"1 -9223372036854775809 S 0.0 0:00.00 x", std::nullopt},
        {"signed extremes", u"+9223372036854775807 -9223372036854775808 S 0.0 0 x",
         row(std::numeric_limits<qint64>::max(), std::numeric_limits<qint64>::min(), u"x")},
        {"cpu not a number counts 0", u"12 1 S n/a 0:00.00 x", row(12, 1, u"x")},
        {"cpu with exponent and sign", u"12 1 S +1e2 0:00.00 x", row(12, 1, u"x", 100)},
        {"cpu beyond double's range", u"12 1 S 1e400 -1e-400 x",
         row(12, 1, u"x", std::numeric_limits<double>::infinity(), 0)},
        {"state taken unchanged", u"12 1 ?<sl 0 0 x", row(12, 1, u"x", 0, 0, u"?<sl")},
    };
    for (const auto& c : cases)
        EXPECT_EQ(parseProcessLine(QString::fromUtf16(c.line)), c.expected) << c.name;
}

TEST(CPUTimeParsing, ClockForms) {
    const struct {
        const char16_t* text;
        double seconds;
    } cases[] = {
        {u"0:00.52", 0.52},   {u"1:02:03", 3723}, {u"1-02:03:04", 93784},
        {u"3-00:00", 259200}, {u" \t7\n", 7},     {u":", 0},
    };
    for (const auto& c : cases) {
        const QString text = QString::fromUtf16(c.text);
        EXPECT_DOUBLE_EQ(parseCPUTime(text), c.seconds) << text.toStdString();
    }
}

TEST(PsProcessTable, ExitStatusOutputAndLaunchFailures) {
    // Shell scripts standing in for ps, in a private folder.
    const test::ScratchDir dir("fake-ps");
    const auto script = [&](const char* name, const QByteArray& body) {
        const QString file =
            dir.write(dir.path(QLatin1StringView(name)), "#!/bin/sh\n" + body + '\n');
        QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return file;
    };
    const struct {
        const char* name;
        QString executable;
        QString expected;
    } cases[] = {
        {"illegal option", script("a", "echo 'ps: illegal option' >&2; exit 1"),
         QStringLiteral("Brenvik.ProcessMonitor 1: ps: illegal option")},
        {"silent failure", script("b", "exit 2"),
         QStringLiteral("Brenvik.ProcessMonitor 2: ps failed with exit code 2")},
        {"killed by a signal", script("c", "kill -9 $$"),
         QStringLiteral("Brenvik.ProcessMonitor 137: ps failed with exit code 137")},
        {"only white space", script("d", "printf '  \\n\\t\\n'"), QString()},
        {"stderr dropped", script("e", "echo 'ps: x' >&2; echo '5 1 S 0.0 0:00 /bin/codex'"),
         QStringLiteral("/bin/codex")},
        {"invalid UTF-8 replaced", script("f", "printf '1 0 S 0.0 0:01 a\\377b\\n'"),
         QStringLiteral("a\uFFFDb")},
        {"large output read before the wait",
         script("g", "i=0; while [ $i -lt 1000 ]; do echo \"$i 1 S 0.0 0:00 $(printf %0100d 0)\"; "
                     "i=$((i+1)); done"),
         QStringList(1000, QStringLiteral("0").repeated(100)).join(u'\n')},
        {"cannot launch: missing", dir.path(u"missing"_qs),
         u"POSIX " + QString::number(ENOENT) + u": " + qt_error_string(ENOENT)},
    };
    for (const auto& c : cases)
        EXPECT_EQ(test::commandsOf([&] { return readProcessTable(c.executable); }), c.expected)
            << c.name;
}

// Arbitrary bytes and mutated real lines through every parser.
TEST(ParserRobustness, ArbitraryInputNeverBreaksTheParsers) {
    const QByteArray seeds[] = {
        "  501   1 Ss     0.0   0:01.23 /usr/local/bin/codex  exec --help  ",
        "9223372036854775807 -1 R+ 1e308 1-23:59:59.99 node \xe2\x80\x83x",
        "42 (a) (b c)) R 9 0 0 0 0 0 0 0 0 0 7 3 0 0 20 0 1 0 900 123 456\n",
        "0x1p3 -0 inf nan 3-:::4 -",
    };
    test::fuzz(seeds, " -:.()0\t", 60000, [](const QByteArray& input, int) {
        const QString text = QString::fromUtf8(input);
        if (const auto row = parseProcessLine(text)) {
            ASSERT_FALSE(row->command.isEmpty()) << input.toHex().constData();
            ASSERT_FALSE(row->command.front().isSpace() || row->command.back().isSpace())
                << input.toHex().constData();
        }
        (void)parseCPUTime(text);
        if (const auto stat = parseProcStat(input)) {
            ASSERT_LE(stat->comm.size(), input.size()) << input.toHex().constData();
        }
    });
}

} // namespace
} // namespace brenvik
