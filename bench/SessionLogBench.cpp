// Cost of following Codex's session logs: 20 logs of 50 MB, each growing by
// one line per refresh, as a busy machine's monitor would see them.
#include "sessionlog/SessionLogCache.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <chrono>
#include <fcntl.h>
#include <unistd.h>

namespace {

using namespace brenvik;

constexpr int kLogs = 20;
constexpr qint64 kLogSize = 50 * 1024 * 1024;

QByteArray line(const QByteArray& type, const QByteArray& payload) {
    return R"({"timestamp":"2026-11-23T13:27:26.851Z","ordinal":1,"type":")" + type +
           R"(","payload":)" + payload + "}\n";
}

// One line of each kind a turn appends, long tool output included.
QList<QByteArray> turnLines() {
    const QByteArray output = QByteArray(2000, 'o');
    return {
        line("event_msg", R"({"type":"task_started","turn_id":"T1","started_at":1795440446})"),
        line("response_item",
             R"({"type":"reasoning","id":"rs_1","summary":[],"encrypted_content":")" +
                 QByteArray(1500, 'e') + R"("})"),
        line("response_item", R"({"type":"function_call","id":"fc_1","name":"exec_command",)"
                              R"("arguments":"{\"cmd\": \"make -j2 test\"}","call_id":"call_1"})"),
        line("event_msg", R"({"type":"token_count","info":{"total_token_usage":{"input_tokens":)"
                          R"(10,"cached_input_tokens":0,"output_tokens":5,"total_tokens":15}}})"),
        line("response_item", R"({"type":"function_call_output","id":"fco_1","call_id":"call_1",)"
                              R"("output":")" +
                                  output + R"("})"),
        line("response_item", R"({"type":"message","id":"msg_1","role":"assistant","content":)"
                              R"([{"type":"output_text","text":"Tests pass."}]})"),
        line("event_msg", R"({"type":"task_complete","turn_id":"T1","last_agent_message":)"
                          R"("Tests pass.","duration_ms":3320})"),
    };
}

// A 50 MB log: its session_meta, a sparse middle, and a few MB of turns at
// its end; the last turn is still open.
void writeLog(const QString& path, const QList<QByteArray>& turn) {
    const QByteArray meta =
        line("session_meta", R"({"id":"01a2","cwd":"/home/u/proj","originator":"codex-tui",)"
                             R"("cli_version":"0.169.0","base_instructions":{"text":")" +
                                 QByteArray(20000, 'i') + R"("}})");
    QByteArray tail = "\n";
    while (tail.size() < 3 * 1024 * 1024)
        for (const QByteArray& l : turn)
            tail += l;
    tail += turn[0];
    const int fd = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (fd < 0 || ::write(fd, meta.constData(), size_t(meta.size())) != meta.size() ||
        ::pwrite(fd, tail.constData(), size_t(tail.size()), off_t(kLogSize - tail.size())) !=
            tail.size())
        qFatal("cannot write %s", qPrintable(path));
    ::close(fd);
}

struct Logs {
    Logs() {
        const QList<QByteArray> turn = turnLines();
        for (int i = 0; i < kLogs; ++i) {
            paths.append(dir.filePath(QStringLiteral("rollout-%1.jsonl").arg(i)));
            writeLog(paths.back(), turn);
            fds.append(::open(QFile::encodeName(paths.back()).constData(), O_WRONLY | O_APPEND));
        }
    }
    ~Logs() {
        for (const int fd : fds)
            ::close(fd);
    }
    void appendEverywhere(const QByteArray& line) const {
        for (const int fd : fds)
            if (::write(fd, line.constData(), size_t(line.size())) != line.size())
                qFatal("cannot append");
    }

    QTemporaryDir dir; // removed with the logs at the end
    QStringList paths;
    QList<int> fds;
};

// One refresh: ask the cache about each of the 20 logs, each grown by one line.
// Only the refresh is timed, not the appends.
void BM_RefreshGrowingLogs(benchmark::State& state) {
    const Logs logs;
    const QList<QByteArray> turn = turnLines();
    SessionLogCache cache;
    for (const QString& path : logs.paths)
        (void)cache.stateOf(path);
    qsizetype next = 1;
    for (auto _ : state) {
        logs.appendEverywhere(turn[next++ % turn.size()]);
        const auto start = std::chrono::steady_clock::now();
        for (const QString& path : logs.paths)
            benchmark::DoNotOptimize(cache.stateOf(path));
        state.SetIterationTime(
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    state.counters["logs"] = kLogs;
}
BENCHMARK(BM_RefreshGrowingLogs)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(3000);

// The same refresh when no log grew.
void BM_RefreshQuietLogs(benchmark::State& state) {
    const Logs logs;
    SessionLogCache cache;
    for (const QString& path : logs.paths)
        (void)cache.stateOf(path);
    for (auto _ : state)
        for (const QString& path : logs.paths)
            benchmark::DoNotOptimize(cache.stateOf(path));
    state.counters["logs"] = kLogs;
}
BENCHMARK(BM_RefreshQuietLogs)->Unit(benchmark::kMicrosecond);

// First sight of one 50 MB log: its first line, then back from the end to
// the open turn's start (about 3 KB back here) and forward again.
void BM_FirstRead(benchmark::State& state) {
    const Logs logs;
    for (auto _ : state)
        benchmark::DoNotOptimize(SessionLogReader(logs.paths[0]).update());
}
BENCHMARK(BM_FirstRead)->Unit(benchmark::kMicrosecond);

// First sight when the last turn event is far back: 16 MB of tool output
// lines after it, the most it looks through.
void BM_FirstReadWorstCase(benchmark::State& state) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("rollout-worst.jsonl"));
    const QList<QByteArray> turn = turnLines();
    QByteArray log = turn[0];
    while (log.size() < 16 * 1024 * 1024)
        log += turn[4];
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(log) != log.size())
        qFatal("cannot write %s", qPrintable(path));
    file.close();
    for (auto _ : state)
        benchmark::DoNotOptimize(SessionLogReader(path).update());
}
BENCHMARK(BM_FirstReadWorstCase)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
