// Speed of the detection pass: parsing a ps listing and grouping it, on
// synthetic tables; and the CPU that one live snapshot costs with each source.
#include "detection/ProcProcessTable.h"
#include "detection/ProcessTree.h"
#include "detection/PsProcessTable.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <random>
#include <sys/resource.h>
#include <unistd.h>

namespace {

using namespace brenvik;

// A listing like a busy desktop's: mostly unrelated processes with long
// command lines, a few Codex trees under launchers.
QByteArray syntheticListing(int rows) {
    static const char* const kCommands[] = {
        "/usr/lib/firefox/firefox -contentproc -childID 12 -isForBrowser -prefsLen 31337 "
        "-prefMapSize 244000 -jsInitLen 235000 -parentBuildID 20240101 -appDir "
        "/usr/lib/firefox/browser 4242 true tab",
        "/usr/bin/gnome-shell",
        "/bin/bash --login",
        "/usr/libexec/gvfsd-metadata",
        "node /home/u/projects/site/node_modules/.bin/vite --port 5173",
        "[kworker/3:2-events]",
        "/usr/share/code/code --type=renderer --enable-crash-reporter=1234 --lang=en-US",
        "python3 -m http.server 8000",
    };
    std::mt19937 random(7);
    QByteArray out;
    out.reserve(rows * 120);
    for (int pid = 1000; pid < 1000 + rows; ++pid) {
        QByteArray command;
        qint64 ppid = 1 + random() % 900;
        switch (pid % 200) {
        case 0:
            command = "npm exec @zed-industries/codex-acp";
            break;
        case 1:
            command = "node /u/.npm/_npx/a1/node_modules/.bin/codex-acp";
            ppid = pid - 1;
            break;
        case 2:
            command = "/u/.npm/_npx/a1/lib/codex-acp --stdio";
            ppid = pid - 1;
            break;
        case 3:
            command = "/opt/homebrew/bin/codex exec fix the tests";
            break;
        default:
            command = kCommands[random() % std::size(kCommands)];
        }
        out += "  " + QByteArray::number(pid) + "  " + QByteArray::number(ppid) +
               " S    0.3  1:02:03.45 " + command + '\n';
    }
    return out;
}

void BM_ParseAndDetect(benchmark::State& state) {
    const QByteArray listing = syntheticListing(int(state.range(0)));
    for (auto _ : state) {
        const QString text = QString::fromUtf8(listing).trimmed();
        benchmark::DoNotOptimize(detectCodexProcesses(parseProcessListing(text)));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["processes"] = double(state.range(0));
}
BENCHMARK(BM_ParseAndDetect)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

// The two halves of the above, for where the time goes.
void BM_ParseOnly(benchmark::State& state) {
    const QString text = QString::fromUtf8(syntheticListing(int(state.range(0)))).trimmed();
    for (auto _ : state)
        benchmark::DoNotOptimize(parseProcessListing(text));
    state.counters["processes"] = double(state.range(0));
}
BENCHMARK(BM_ParseOnly)->Arg(10000)->Unit(benchmark::kMillisecond);

void BM_DetectOnly(benchmark::State& state) {
    const auto rows = parseProcessListing(QString::fromUtf8(syntheticListing(int(state.range(0)))));
    for (auto _ : state)
        benchmark::DoNotOptimize(detectCodexProcesses(rows));
    state.counters["processes"] = double(state.range(0));
}
BENCHMARK(BM_DetectOnly)->Arg(10000)->Unit(benchmark::kMillisecond);

// CPU seconds used so far by this process and its reaped children.
double cpuSecondsWithChildren() {
    double total = 0;
    for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage usage{};
        getrusage(who, &usage);
        total += double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
                 double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
    }
    return total;
}

// Reports CPU time (self + children) as the iteration time.
template <typename Snapshot> void measureCPU(benchmark::State& state, Snapshot snapshot) {
    qint64 rows = 0;
    for (auto _ : state) {
        const double before = cpuSecondsWithChildren();
        rows = snapshot().size();
        state.SetIterationTime(cpuSecondsWithChildren() - before);
    }
    state.counters["processes"] = double(rows);
}

void BM_ProcSnapshotSteady(benchmark::State& state) {
    ProcProcessTableSource source; // command lines cached after the first round
    (void)source.snapshot();
    measureCPU(state, [&] { return source.snapshot(); });
}
BENCHMARK(BM_ProcSnapshotSteady)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(1.0);

void BM_ProcSnapshotCold(benchmark::State& state) {
    measureCPU(state, [] { return ProcProcessTableSource().snapshot(); });
}
BENCHMARK(BM_ProcSnapshotCold)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(1.0);

// Listing /proc, and opening and reading one file per process: the floor of
// a refresh (it must learn which processes exist), and what reading every
// process's stat would cost, which the /proc source's rotation avoids.
template <bool readStat> void readProc(benchmark::State& state) {
    measureCPU(state, [] {
        QList<int> rows;
        DIR* proc = ::opendir("/proc");
        char buffer[1024];
        while (const dirent* entry = ::readdir(proc)) {
            if (entry->d_name[0] < '1' || entry->d_name[0] > '9')
                continue;
            if constexpr (readStat) {
                char path[sizeof entry->d_name + 8];
                std::snprintf(path, sizeof path, "%s/stat", entry->d_name);
                const int fd = ::openat(::dirfd(proc), path, O_RDONLY | O_CLOEXEC);
                if (fd < 0)
                    continue;
                const bool read = ::read(fd, buffer, sizeof buffer) > 0;
                ::close(fd);
                if (!read)
                    continue;
            }
            rows.append(std::atoi(entry->d_name));
        }
        ::closedir(proc);
        return rows;
    });
}
void BM_ListFloor(benchmark::State& state) {
    readProc<false>(state);
}
BENCHMARK(BM_ListFloor)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(1.0);
void BM_EveryStat(benchmark::State& state) {
    readProc<true>(state);
}
BENCHMARK(BM_EveryStat)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(1.0);

void BM_PsSnapshot(benchmark::State& state) {
    measureCPU(state, [] { return readProcessTable(); });
}
BENCHMARK(BM_PsSnapshot)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(1.0);

} // namespace

BENCHMARK_MAIN();
