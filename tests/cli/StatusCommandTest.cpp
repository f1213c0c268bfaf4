// brenvik-status as a user runs it: its output, with fake Codex CLI processes
// that the test starts and ends itself, held against expected-output files
// under golden/; going to a session in a tmux pane of the test's own.
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
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
        environment.insert(QStringLiteral("ASAN_OPTIONS"),
                           environment.value(QStringLiteral("ASAN_OPTIONS")) +
                               QStringLiteral(":detect_leaks=0"));
        process.setProcessEnvironment(environment);
    }
    process.start(QStringLiteral(BRENVIK_STATUS_COMMAND), arguments);
    QByteArray out;
    CommandResult run;
    if (watchLines > 0) {
        // Whether enough lines came or the command ended early, the checks below tell.
        (void)QTest::qWaitFor(
            [&] {
                out += process.readAllStandardOutput();
                return out.count('\n') >= watchLines || process.state() == QProcess::NotRunning;
            },
            kBound);
        if (process.state() == QProcess::NotRunning) {
            run.err = u"brenvik-status --watch ended by itself: "_qs +
                      QString::fromUtf8(process.readAllStandardError());
            return run;
        }
        ::kill(static_cast<pid_t>(process.processId()), signal);
    }
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

// A fake Codex CLI: `exec -a DIR/codex` over sleep (idle) or yes (busy). It
// dies with the test, also when the test itself is killed.
class FakeCodex {
public:
    enum class Kind { idle, busy };

    FakeCodex(const QString& directory, Kind kind)
        : m_command(directory + u"/codex") {
        const QString script = kind == Kind::idle ? QStringLiteral("exec -a \"$0\" sleep 600")
                                                  : QStringLiteral("exec -a \"$0\" yes >/dev/null");
        if (kind == Kind::idle)
            m_command += u" 600";
        m_process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
        m_process.start(QStringLiteral("bash"),
                        {QStringLiteral("-c"), script, directory + u"/codex"});
        m_process.waitForStarted(kBound);
        // Wait for the exec, so nobody sees the bash in between.
        const QString cmdline = QStringLiteral("/proc/%1/cmdline").arg(pid());
        m_execed = QTest::qWaitFor(
            [&] {
                QFile file(cmdline);
                return file.open(QIODevice::ReadOnly) &&
                       QString::fromLocal8Bit(file.readAll()).replace(u'\0', u' ').trimmed() ==
                           m_command;
            },
            kBound);
    }
    ~FakeCodex() { stop(); }

    [[nodiscard]] qint64 pid() const { return m_process.processId(); }
    // Started and showing the Codex command line.
    [[nodiscard]] bool isRunning() const {
        return m_execed && m_process.state() == QProcess::Running;
    }
    void stop() {
        if (m_process.state() == QProcess::NotRunning)
            return;
        m_process.kill();
        m_process.waitForFinished(kBound);
    }

private:
    QProcess m_process;
    QString m_command;
    bool m_execed = false;
};

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

// An idle and a busy fake Codex CLI in a fresh folder.
struct FakePair {
    QTemporaryDir directory{kFakeDirectoryTemplate};
    FakeCodex idle{directory.path(), FakeCodex::Kind::idle};
    FakeCodex busy{directory.path(), FakeCodex::Kind::busy};
    [[nodiscard]] bool isRunning() const {
        return directory.isValid() && idle.isRunning() && busy.isRunning();
    }
};

QStringList words(const char* text) {
    return QString::fromLatin1(text).split(u' ', Qt::SkipEmptyParts);
}

std::optional<QJsonObject> parseReport(const QString& line) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(line.toUtf8(), &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return std::nullopt;
    return document.object();
}

QList<qint64> groupPIDs(const QJsonObject& report) {
    QList<qint64> pids;
    for (const QJsonValue& group : report[u"groups"].toArray())
        pids << group[u"pid"].toInteger();
    return pids;
}

struct GoldenCase {
    const char* name;
    const char* arguments; // separated by blanks
    bool withFakes;        // an idle and a busy fake Codex CLI run meanwhile
    int watchLines;        // 0: runs to its end; otherwise --watch, ended after this many lines
    int signal;            // what ends --watch
    int exitCode;
    const char* stdoutGolden;
    const char* stderrGolden;
};

const GoldenCase kGoldenCases[] = {
    {"help", "--help", false, 0, 0, 0, "help.txt", "empty.txt"},
    {"version", "--version", false, 0, 0, 0, "version.txt", "empty.txt"},
    {"unknown option", "--json --frobnicate", false, 0, 0, 2, "empty.txt", "unknown-option.txt"},
    {"unexpected argument", "now", false, 0, 0, 2, "empty.txt", "unexpected-argument.txt"},
    {"text report", "", true, 0, 0, 0, "report.txt", "empty.txt"},
    {"JSON report", "--json", true, 0, 0, 0, "report.json", "empty.txt"},
    {"watch, ended by SIGINT", "--watch", true, 2, SIGINT, 0, "watch.txt", "empty.txt"},
    {"watch JSON, ended by SIGTERM", "--watch --json", true, 2, SIGTERM, 0, "watch.json",
     "empty.txt"},
};

void checkAgainstGolden(const GoldenCase& testCase) {
    SCOPED_TRACE(testCase.name);
    std::optional<FakePair> fakes;
    QHash<QString, QString> values;
    if (testCase.withFakes) {
        fakes.emplace();
        // The expected files list the idle one first; PIDs that wrapped
        // around in between are too rare to be worth a second layout.
        ASSERT_TRUE(fakes->isRunning());
        ASSERT_LT(fakes->idle.pid(), fakes->busy.pid());
        values = {{QStringLiteral("DIR"), fakes->directory.path()},
                  {QStringLiteral("IDLE_PID"), QString::number(fakes->idle.pid())},
                  {QStringLiteral("BUSY_PID"), QString::number(fakes->busy.pid())}};
    }

    const CommandResult run =
        runStatus(words(testCase.arguments), testCase.watchLines, testCase.signal);
    EXPECT_EQ(run.exitCode, testCase.exitCode) << run.err.toStdString();
    EXPECT_TRUE(matchesGolden(run.out, testCase.stdoutGolden, values));
    EXPECT_TRUE(matchesGolden(run.err, testCase.stderrGolden, values));
}

TEST(StatusCommand, OutputMatchesTheExpectedFiles) {
    // The expected reports hold the fakes alone.
    const auto before = parseReport(runStatus({QStringLiteral("--json")}).out);
    ASSERT_TRUE(before);
    const bool othersRun = !groupPIDs(*before).isEmpty();
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

// A tmux server of the test's own, on a socket in a fresh folder; ended
// with the test.
class PrivateTmux {
public:
    PrivateTmux() {
        m_socket = m_directory.path() + u"/sock";
        QFile script(m_directory.path() + u"/codex");
        m_ready = m_directory.isValid() && script.open(QIODevice::WriteOnly) &&
                  script.write("#!/bin/sh\nsleep 600\n") > 0 &&
                  script.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                        QFileDevice::ExeOwner);
    }
    ~PrivateTmux() { (void)run({QStringLiteral("kill-server")}); }
    PrivateTmux(const PrivateTmux&) = delete;
    PrivateTmux& operator=(const PrivateTmux&) = delete;

    [[nodiscard]] bool isReady() const { return m_ready; }
    [[nodiscard]] const QString& socket() const { return m_socket; }
    [[nodiscard]] QString directory() const { return m_directory.path(); }

    // Its standard output, trimmed; none when it failed.
    std::optional<QString> run(const QStringList& arguments) const {
        QProcess process;
        process.start(QStringLiteral("tmux"),
                      QStringList{u"-S"_qs, m_socket, u"-f"_qs, u"/dev/null"_qs} + arguments);
        if (!process.waitForFinished(kBound) || process.exitCode() != 0)
            return std::nullopt;
        return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
    }

private:
    QTemporaryDir m_directory{kFakeDirectoryTemplate};
    QString m_socket;
    bool m_ready = false;
};

// A stand-in Codex session in pane 1 of window 1 of a detached tmux session
// with a hostile name, while window 0 is the current one: the report names
// the pane, and --go selects it, with no X server (the tests run offscreen).
TEST(StatusCommand, GoesToTheTmuxPaneOfASession) {
    PrivateTmux tmux;
    ASSERT_TRUE(tmux.isReady());
    const QString name = QStringLiteral("work\"$(touch pwned)");
    const QString directory = tmux.directory();
    const std::optional<QString> sessionId =
        tmux.run(words("new-session -d -P -F #{session_id} -x 80 -y 24 -c") << directory
                                                                              << u"-s"_qs << name);
    ASSERT_TRUE(sessionId);
    const QString window = *sessionId + u":1";
    ASSERT_TRUE(tmux.run(words("new-window -d -c") << directory << u"-t"_qs << window));
    ASSERT_TRUE(tmux.run(words("split-window -d -c")
                         << directory << u"-t"_qs << window << directory + u"/codex"));
    const auto active = [&] {
        return tmux.run(words("display-message -p -t") << *sessionId
                                                        << u"#{window_index}.#{pane_index}"_qs)
            .value_or(QString());
    };
    ASSERT_EQ(active(), u"0.0");

    // The stand-in's group, once a report shows it.
    QJsonObject group;
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            const auto report = parseReport(runStatus({QStringLiteral("--json")}).out);
            for (const QJsonValue& candidate :
                 report.value_or(QJsonObject())[u"groups"].toArray()) {
                if (candidate[u"command"].toString().contains(tmux.directory() + u"/codex"))
                    group = candidate.toObject();
            }
            return !group.isEmpty();
        },
        kBound));
    const QJsonObject expectedPlace{{u"terminal"_qs, QJsonValue::Null},
                                    {u"window"_qs, QJsonValue::Null},
                                    {u"tmux"_qs, QJsonObject{{u"socket"_qs, tmux.socket()},
                                                             {u"session"_qs, name},
                                                             {u"window"_qs, 1},
                                                             {u"pane"_qs, 1}}},
                                    {u"guess"_qs, false}};
    EXPECT_EQ(group[u"place"].toObject(), expectedPlace);

    const QString pid = QString::number(group[u"pid"].toInteger());
    const CommandResult go = runStatus({QStringLiteral("--go"), pid});
    EXPECT_EQ(go.exitCode, 0) << go.err.toStdString();
    EXPECT_EQ(go.out, u"In tmux " + name +
                          u":1.1, which no terminal shows: its pane is selected for the next "
                          u"attach\n");
    EXPECT_EQ(active(), u"1.1");
    EXPECT_FALSE(QFile::exists(tmux.directory() + u"/pwned")) << "a name is never run";

    const CommandResult nowhere = runStatus({QStringLiteral("--go"), QStringLiteral("1")});
    EXPECT_EQ(nowhere.exitCode, 1);
    EXPECT_EQ(nowhere.err, u"brenvik-status: no Codex session has PID 1\n");
}

} // namespace
