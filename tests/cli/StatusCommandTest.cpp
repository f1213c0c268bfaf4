// brenvik-status as a user runs it: its output, with fake Codex CLI processes
// that the test starts and ends itself, held against expected-output files
// under golden/. Going to a tmux pane is driven end to end in
// tests/places/go-x11-e2e.sh.
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>
#include <gtest/gtest.h>
#include <optional>
#include <sys/prctl.h>

namespace {

constexpr int kBound = 30000; // ms; generous for a sanitized build on a busy machine

struct CommandResult {
    int exitCode = -1;
    QString out;
    QString err;
};

// Runs brenvik-status to its end; or, with `watchLines`, runs --watch until it
// printed that many lines and ends it with `signal`.
CommandResult runStatus(const QStringList& arguments, int watchLines = 0, int signal = 0) {
    QProcess process;
    if (watchLines > 0) {
        // LeakSanitizer's stop-the-world pass at exit was once seen to hang after
        // the signal on a loaded machine; the one-shot runs keep the leak check.
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"ASAN_OPTIONS"_qs,
                           environment.value(u"ASAN_OPTIONS"_qs) + u":detect_leaks=0"_qs);
        process.setProcessEnvironment(environment);
    }
    process.start(QStringLiteral(BRENVIK_STATUS_COMMAND), arguments);
    QByteArray out;
    const auto enoughLines = [&] {
        out += process.readAllStandardOutput();
        return out.count('\n') >= watchLines || process.state() == QProcess::NotRunning;
    };
    // One that ended early shows in its exit status and output.
    if (watchLines > 0 && QTest::qWaitFor(enoughLines, kBound) &&
        process.state() == QProcess::Running)
        ::kill(static_cast<pid_t>(process.processId()), signal);
    CommandResult run;
    if (!process.waitForFinished(kBound)) {
        process.kill();
        process.waitForFinished();
        run.err = QStringLiteral("brenvik-status did not finish");
        return run;
    }
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    out += process.readAllStandardOutput();
    run.out = QString::fromUtf8(out);
    // Only whole lines up to the count: another refresh may have ended meanwhile.
    if (watchLines > 0)
        run.out = run.out.section(u'\n', 0, watchLines - 1) + u'\n';
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

// Whether output matches an expected-output file, in which {{...}} is a
// regular expression and ${NAME} a value the test knows; all else is literal.
::testing::AssertionResult matchesGolden(const QString& actual, const char* name,
                                         const QHash<QString, QString>& values) {
    QFile file(QStringLiteral(BRENVIK_GOLDEN_DIR "/") + QString::fromLatin1(name));
    if (!file.open(QIODevice::ReadOnly))
        return ::testing::AssertionFailure() << "cannot read " << name;
    const QString expected = QString::fromUtf8(file.readAll());
    static const QRegularExpression piece(QStringLiteral(R"(\{\{(.*?)\}\}|\$\{(\w+)\})"));
    QString pattern;
    qsizetype literalStart = 0;
    for (auto it = piece.globalMatch(expected); it.hasNext();) {
        const auto match = it.next();
        pattern +=
            QRegularExpression::escape(
                expected.mid(literalStart, match.capturedStart() - literalStart)) +
            (match.hasCaptured(1) ? u'(' + match.captured(1) + u')'
                                  : QRegularExpression::escape(values.value(match.captured(2))));
        literalStart = match.capturedEnd();
    }
    pattern += QRegularExpression::escape(expected.mid(literalStart));
    if (QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(actual).hasMatch())
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << name << " expected:\n"
                                         << expected.toStdString() << "\nactual:\n"
                                         << actual.toStdString();
}

// Where the fake processes seem to live. Its name must not contain the
// program's own name, which would exclude them: so not under
// BRENVIK_TEST_SCRATCH.
const QString kFakeDirectoryTemplate = QStringLiteral("/tmp/cdx-status-XXXXXX");

// An idle and a busy fake Codex CLI in a fresh folder: `exec -a DIR/codex`
// over sleep and yes. They die with the test, also when the test itself is killed.
struct FakePair {
    QTemporaryDir directory{kFakeDirectoryTemplate};
    QProcess idle;
    QProcess busy;
    bool started = directory.isValid() && start(idle, "sleep 600", u" 600") &&
                   start(busy, "yes >/dev/null", u"");
    ~FakePair() {
        for (QProcess* process : {&idle, &busy}) {
            process->kill();
            process->waitForFinished(kBound);
        }
    }

    bool start(QProcess& process, const char* program, const char16_t* arguments) {
        const QString command = directory.path() + u"/codex";
        process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
        process.start(u"bash"_qs,
                      {u"-c"_qs, u"exec -a \"$0\" "_qs + QString::fromLatin1(program), command});
        // Wait for the exec, so nobody sees the bash in between.
        const auto execed = [&] {
            QFile file(QStringLiteral("/proc/%1/cmdline").arg(process.processId()));
            return file.open(QIODevice::ReadOnly) &&
                   QString::fromLocal8Bit(file.readAll()).replace(u'\0', u' ').trimmed() ==
                       command + arguments;
        };
        return process.waitForStarted(kBound) && QTest::qWaitFor(execed, kBound);
    }
};

QStringList words(const char* text) {
    return QString::fromLatin1(text).split(u' ', Qt::SkipEmptyParts);
}

struct GoldenCase {
    const char* name;
    const char* arguments; // separated by blanks
    bool withFakes;        // an idle and a busy fake Codex CLI run meanwhile
    int signal;            // 0: runs to its end; else what ends --watch after two lines
    int exitCode;
    const char* stdoutGolden;
    const char* stderrGolden;
};

const GoldenCase kGoldenCases[] = {
    {"help", "--help", false, 0, 0, "help.txt", "empty.txt"},
    {"version", "--version", false, 0, 0, "version.txt", "empty.txt"},
    {"unknown option", "--json --frobnicate", false, 0, 2, "empty.txt", "unknown-option.txt"},
    {"unexpected argument", "now", false, 0, 2, "empty.txt", "unexpected-argument.txt"},
    {"text report", "", true, 0, 0, "report.txt", "empty.txt"},
    {"JSON report", "--json", true, 0, 0, "report.json", "empty.txt"},
    {"watch, ended by SIGINT", "--watch", true, SIGINT, 0, "watch.txt", "empty.txt"},
    {"watch JSON, ended by SIGTERM", "--watch --json", true, SIGTERM, 0, "watch.json", "empty.txt"},
};

void checkAgainstGolden(const GoldenCase& testCase) {
    SCOPED_TRACE(testCase.name);
    std::optional<FakePair> fakes;
    QHash<QString, QString> values;
    if (testCase.withFakes) {
        fakes.emplace();
        // The expected files list the idle one first; PIDs that wrapped
        // around in between are too rare to be worth a second layout.
        ASSERT_TRUE(fakes->started);
        ASSERT_LT(fakes->idle.processId(), fakes->busy.processId());
        values = {{QStringLiteral("DIR"), fakes->directory.path()},
                  {QStringLiteral("IDLE_PID"), QString::number(fakes->idle.processId())},
                  {QStringLiteral("BUSY_PID"), QString::number(fakes->busy.processId())}};
    }

    const CommandResult run =
        runStatus(words(testCase.arguments), testCase.signal != 0 ? 2 : 0, testCase.signal);
    EXPECT_EQ(run.exitCode, testCase.exitCode) << run.err.toStdString();
    EXPECT_TRUE(matchesGolden(run.out, testCase.stdoutGolden, values));
    EXPECT_TRUE(matchesGolden(run.err, testCase.stderrGolden, values));
}

TEST(StatusCommand, OutputMatchesTheExpectedFiles) {
    // The expected reports hold the fakes alone.
    const QJsonDocument before =
        QJsonDocument::fromJson(runStatus({QStringLiteral("--json")}).out.toUtf8());
    ASSERT_TRUE(before.isObject());
    const bool othersRun = !before[u"groups"].toArray().isEmpty();
    for (const GoldenCase& testCase : kGoldenCases) {
        if (!testCase.withFakes || !othersRun)
            checkAgainstGolden(testCase);
    }
    if (othersRun)
        GTEST_SKIP() << "other Codex CLI processes run on this machine: reports not compared";
}

// A report that cannot be written is an error a script hears of; --watch
// ends instead of writing into the void. A reader that goes away is not one.
TEST(StatusCommand, WriteFailuresEndIt) {
    for (const char* arguments : {"--json", "--watch", ""}) {
        SCOPED_TRACE(arguments);
        QProcess process;
        process.setStandardOutputFile(QStringLiteral("/dev/full"));
        process.start(QStringLiteral(BRENVIK_STATUS_COMMAND), words(arguments));
        ASSERT_TRUE(process.waitForFinished(kBound));
        EXPECT_EQ(process.exitCode(), 1);
        EXPECT_TRUE(process.readAllStandardError().contains("No space left on device"));
    }
    QProcess reader;
    reader.start(QStringLiteral("bash"),
                 {QStringLiteral("-c"),
                  QStringLiteral("\"$0\" --watch | head -n 1 >/dev/null; exit ${PIPESTATUS[0]}"),
                  QStringLiteral(BRENVIK_STATUS_COMMAND)});
    ASSERT_TRUE(reader.waitForFinished(kBound)) << "a closed pipe ends --watch";
    EXPECT_EQ(reader.exitCode(), 0);
    EXPECT_TRUE(reader.readAllStandardError().isEmpty()) << "quietly";
}

} // namespace
