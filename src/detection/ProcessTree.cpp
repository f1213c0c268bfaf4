#include "detection/ProcessTree.h"

#include "detection/CodexRecognition.h"

#include <QVarLengthArray>
#include <algorithm>
#include <mutex>
#include <utility>

namespace brenvik {

namespace {

using Chain = QVarLengthArray<const ObservedProcess*, 16>;

struct Parent {
    const ObservedProcess* row = nullptr;
    QString lowered;
};

// Climbs from the candidate through the link rule. parentOf(ppid) yields the
// parent's row and lower-cased command, or nothing when it is not in the
// table. A PID seen twice in one chain ends it: a corrupt table must not loop.
template <typename ParentOf>
Chain climb(const ObservedProcess& candidate, QString lowered, ParentOf parentOf) {
    Chain chain{&candidate};
    for (;;) {
        const std::optional<Parent> parent = parentOf(chain.back()->ppid);
        if (!parent)
            break;
        const qint64 pid = parent->row->pid;
        if (std::any_of(chain.cbegin(), chain.cend(),
                        [pid](const ObservedProcess* row) { return row->pid == pid; }))
            break;
        if (!isLauncherLink(parent->lowered, lowered))
            break;
        chain.append(parent->row);
        lowered = parent->lowered;
    }
    return chain;
}

// False only when the command surely does not contain "codex" in any letter
// case, which every way of being a candidate needs. Plain ASCII is checked
// directly; anything else might lower-case into it and is left to the rule.
bool mayMentionCodex(QStringView command) {
    const char16_t* const text = command.utf16();
    const qsizetype size = command.size();
    // Branch-free so that the compiler can vectorize it; command lines are
    // short, so scanning to the end costs less than stopping early would save.
    char16_t any = 0;
    for (qsizetype i = 0; i < size; ++i)
        any |= text[i];
    // ASCII letters differ from their upper case only in bit 0x20; a zero
    // difference at some position means "codex" starts there.
    char16_t least = 1;
    for (qsizetype i = 0; i + 5 <= size; ++i) {
        const char16_t difference =
            char16_t((text[i] | 0x20) ^ u'c') | char16_t((text[i + 1] | 0x20) ^ u'o') |
            char16_t((text[i + 2] | 0x20) ^ u'd') | char16_t((text[i + 3] | 0x20) ^ u'e') |
            char16_t((text[i + 4] | 0x20) ^ u'x');
        least = std::min(least, difference);
    }
    const bool found = least == 0;
    return found || any >= 0x80;
}

void addMember(ActivityAggregate& group, const ObservedProcess& row) {
    if (group.memberPIDs.contains(row.pid))
        return;
    group.memberPIDs.insert(row.pid);
    group.totalCPUPercent += row.cpuPercent;
    group.cumulativeCPUTime += row.cpuTime;
    if (!group.hasHotState)
        group.hasHotState = isHotState(row.state);
}

} // namespace

QList<DetectedProcessSample> detectCodexProcesses(const QList<ObservedProcess>& rows) {
    // processesByPID. Both sources list processes in ascending PID order, and
    // then a binary search over the rows serves; otherwise a hash map does, in
    // which the first row of a repeated PID wins and later ones take no part.
    const bool ascending =
        std::adjacent_find(rows.cbegin(), rows.cend(), [](const auto& a, const auto& b) {
            return a.pid >= b.pid;
        }) == rows.cend();
    QHash<qint64, qsizetype> indexByPID;
    if (!ascending) {
        indexByPID.reserve(rows.size());
        for (qsizetype i = 0; i < rows.size(); ++i) {
            if (!indexByPID.contains(rows[i].pid))
                indexByPID.insert(rows[i].pid, i);
        }
    }
    const auto indexOf = [&](qint64 pid) -> qsizetype {
        if (!ascending)
            return indexByPID.value(pid, -1);
        const auto it = std::lower_bound(rows.cbegin(), rows.cend(), pid,
                                         [](const auto& row, qint64 key) { return row.pid < key; });
        return it != rows.cend() && it->pid == pid ? it - rows.cbegin() : -1;
    };

    // A command is lower-cased at most once per pass, and only when a test
    // needs it: most rows are ruled out without it.
    QList<QString> lowered(rows.size()); // null until needed
    const auto loweredAt = [&](qsizetype i) -> const QString& {
        if (lowered[i].isNull())
            lowered[i] = lowerCasedCommand(rows[i].command);
        return lowered[i];
    };

    QList<qsizetype> candidates;
    for (qsizetype i = 0; i < rows.size(); ++i) {
        if (!ascending && indexByPID.value(rows[i].pid) != i)
            continue;
        if (mayMentionCodex(rows[i].command) && isCandidateCommand(loweredAt(i)))
            candidates.append(i);
    }

    const auto parentOf = [&](qint64 ppid) -> std::optional<Parent> {
        const qsizetype i = indexOf(ppid);
        if (i < 0)
            return std::nullopt;
        return Parent{&rows[i], loweredAt(i)};
    };

    QHash<qint64, ActivityAggregate> groups;
    for (const qsizetype i : std::as_const(candidates)) {
        const Chain chain = climb(rows[i], loweredAt(i), parentOf);
        const ObservedProcess& root = *chain.back();
        auto group = groups.find(root.pid);
        if (group == groups.end()) {
            ActivityAggregate fresh;
            fresh.root = root;
            group = groups.insert(root.pid, fresh);
        }
        for (const ObservedProcess* row : chain)
            addMember(*group, *row);
    }

    QList<DetectedProcessSample> samples;
    samples.reserve(groups.size());
    for (const ActivityAggregate& group : std::as_const(groups)) {
        samples.append(DetectedProcessSample{.pid = group.root.pid,
                                             .command = group.root.command,
                                             .totalCPUPercent = group.totalCPUPercent,
                                             .cumulativeCPUTime = group.cumulativeCPUTime,
                                             .hasHotState = group.hasHotState,
                                             .memberCount = group.memberPIDs.size()});
    }
    std::sort(samples.begin(), samples.end(),
              [](const auto& a, const auto& b) { return a.pid < b.pid; });
    return samples;
}

QList<ObservedProcess> launcherChain(const ObservedProcess& candidate,
                                     const QHash<qint64, ObservedProcess>& processesByPID) {
    const auto parentOf = [&](qint64 ppid) -> std::optional<Parent> {
        const auto it = processesByPID.constFind(ppid);
        if (it == processesByPID.cend())
            return std::nullopt;
        return Parent{&*it, lowerCasedCommand(it->command)};
    };
    QList<ObservedProcess> result;
    for (const ObservedProcess* row :
         climb(candidate, lowerCasedCommand(candidate.command), parentOf))
        result.append(*row);
    return result;
}

bool isHotState(QStringView state) {
    const QString upper = state.trimmed().toString().toUpper();
    if (upper.isEmpty())
        return false;
    const QChar first = upper.front();
    return first == u'R' || first == u'U' || first == u'D';
}

QList<DetectedProcessSample> scanCodexProcesses() {
    // One source for the life of the process: the /proc source measures CPU
    // use against its previous snapshot.
    static std::mutex mutex;
    static const std::unique_ptr<ProcessTableSource> source = makeDefaultProcessTableSource();
    const std::scoped_lock lock(mutex);
    return scanCodexProcesses(*source);
}

QList<DetectedProcessSample> scanCodexProcesses(ProcessTableSource& source) {
    return detectCodexProcesses(source.snapshot());
}

} // namespace brenvik
