#include "detection/ProcessTree.h"

#include "detection/CodexRecognition.h"

#include <QVarLengthArray>
#include <algorithm>
#include <mutex>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

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

bool isZombieState(QStringView state) {
    const QStringView trimmed = state.trimmed();
    return !trimmed.isEmpty() && (trimmed[0] == u'Z' || trimmed[0] == u'z');
}

// One pass over one snapshot. Rows are addressed by index; the first row of a
// repeated PID wins and later ones take no part.
class SessionFinder {
public:
    explicit SessionFinder(const QList<ObservedProcess>& rows)
        : m_rows(rows)
        , m_lowered(rows.size()) {
        // Both sources list processes in ascending PID order, and then a
        // binary search over the rows serves; otherwise a hash map does.
        m_ascending =
            std::adjacent_find(rows.cbegin(), rows.cend(), [](const auto& a, const auto& b) {
                return a.pid >= b.pid;
            }) == rows.cend();
        if (!m_ascending) {
            m_indexByPID.reserve(rows.size());
            for (qsizetype i = 0; i < rows.size(); ++i)
                m_indexByPID.try_emplace(rows[i].pid, i);
        }
    }

    QList<DetectedProcessSample> find() {
        if (!recogniseCodexProcesses())
            return {};
        indexChildren();
        QHash<qint64, Session> sessions;
        QList<qsizetype> serviceTops;
        for (const auto& [index, role] : std::as_const(m_codex)) {
            if (role == CodexRole::service) {
                if (!hasAncestor(index, [](CodexRole r) { return r == CodexRole::service; }))
                    serviceTops.append(index);
            } else if (isFrontEnd(role) &&
                       !hasAncestor(index, [](CodexRole r) { return r != CodexRole::none; })) {
                m_tops.insert(index);
            }
        }
        addFrontEnds(sessions);
        for (Session& session : sessions)
            addTree(session, indexOf(session.group.root.pid), sessions);
        QList<qint64> servicePIDs;
        for (const qsizetype service : std::as_const(serviceTops)) {
            attributeServiceWork(service, sessions);
            if (isCodexExecutable(m_rows[service].executable))
                servicePIDs.append(m_rows[service].pid);
        }

        QList<DetectedProcessSample> samples;
        samples.reserve(sessions.size());
        for (const Session& session : std::as_const(sessions)) {
            const ActivityAggregate& group = session.group;
            samples.append(DetectedProcessSample{
                .pid = group.root.pid,
                .command = group.root.command,
                .totalCPUPercent = group.totalCPUPercent,
                .cumulativeCPUTime = group.cumulativeCPUTime,
                .hasHotState = group.hasHotState,
                .memberCount = group.memberPIDs.size(),
                .processCount = group.processCount,
                .cwd = session.cwd,
                .startedAt = session.startedAt,
                .interactive = session.interactive,
                .runningCommands = session.runningCommands,
                .logHolderPIDs =
                    session.interactive ? session.logHolders + servicePIDs : session.logHolders});
        }
        std::sort(samples.begin(), samples.end(),
                  [](const auto& a, const auto& b) { return a.pid < b.pid; });
        return samples;
    }

    // Every process a session or a service is made of, and all Codex
    // processes: what the next snapshot must read afresh.
    [[nodiscard]] QSet<qint64> processesOfInterest() const {
        QSet<qint64> pids(m_counted.cbegin(), m_counted.cend());
        // Below every Codex process, the service's included.
        QSet<qsizetype> visited;
        std::vector<qsizetype> pending;
        for (const auto& [index, role] : m_codex)
            pending.push_back(index);
        while (!pending.empty()) {
            const qsizetype index = pending.back();
            pending.pop_back();
            if (visited.contains(index))
                continue;
            visited.insert(index);
            pids.insert(m_rows[index].pid);
            forEachChild(index, [&](qsizetype child) { pending.push_back(child); });
        }
        return pids;
    }

private:
    struct Session {
        ActivityAggregate group;
        bool interactive = false; // served by the shared service
        qint64 runningCommands = 0;
        QList<qint64> logHolders;
        QString cwd;
        std::optional<QDateTime> startedAt;
    };

    // A process tree is far shallower than this; a corrupt table may loop.
    static constexpr int kMaxDepth = 1024;

    qsizetype indexOf(qint64 pid) const {
        if (!m_ascending) {
            const auto it = m_indexByPID.find(pid);
            return it == m_indexByPID.end() ? -1 : it->second;
        }
        const auto it = std::lower_bound(m_rows.cbegin(), m_rows.cend(), pid,
                                         [](const auto& row, qint64 key) { return row.pid < key; });
        return it != m_rows.cend() && it->pid == pid ? it - m_rows.cbegin() : -1;
    }

    bool takesPart(qsizetype i) const {
        return (m_ascending || indexOf(m_rows[i].pid) == i) && !isZombieState(m_rows[i].state);
    }

    // A command is lower-cased once, by the source where it keeps it with the
    // process, else at most once per pass and only when a test needs it: most
    // rows are ruled out without it.
    const QString& loweredAt(qsizetype i) {
        if (!m_rows[i].loweredCommand.isEmpty())
            return m_rows[i].loweredCommand;
        if (m_lowered[i].isNull())
            m_lowered[i] = lowerCasedCommand(m_rows[i].command);
        return m_lowered[i];
    }

    CodexRole roleAt(qsizetype i) const {
        const auto it = m_roleByIndex.find(i);
        return it == m_roleByIndex.end() ? CodexRole::none : it->second;
    }

    bool recogniseCodexProcesses() {
        for (qsizetype i = 0; i < m_rows.size(); ++i) {
            const ObservedProcess& row = m_rows[i];
            if (!(mayMentionCodex(row.command) || isCodexExecutable(row.executable)) ||
                !takesPart(i))
                continue;
            const CodexRole role = codexRole(loweredAt(i), row.executable, row.arguments);
            if (role == CodexRole::none)
                continue;
            m_codex.append({i, role});
            m_roleByIndex.emplace(i, role);
        }
        return !m_codex.isEmpty();
    }

    // Children by parent PID: the rows that take part, sorted by (ppid, pid).
    // The keys are copied beside each index, so the sort compares neighbours
    // in one array rather than rows scattered over the table.
    void indexChildren() {
        m_byParent.reserve(size_t(m_rows.size()));
        for (qsizetype i = 0; i < m_rows.size(); ++i) {
            if (takesPart(i))
                m_byParent.push_back({m_rows[i].ppid, m_rows[i].pid, i});
        }
        std::sort(m_byParent.begin(), m_byParent.end(), [](const Child& a, const Child& b) {
            return std::pair(a.ppid, a.pid) < std::pair(b.ppid, b.pid);
        });
    }

    template <typename Visit> void forEachChild(qsizetype parent, Visit visit) const {
        const qint64 pid = m_rows[parent].pid;
        auto it = std::lower_bound(m_byParent.cbegin(), m_byParent.cend(), pid,
                                   [](const Child& child, qint64 key) { return child.ppid < key; });
        for (; it != m_byParent.cend() && it->ppid == pid; ++it) {
            if (it->index != parent)
                visit(it->index);
        }
    }

    template <typename Test> bool hasAncestor(qsizetype index, Test test) const {
        qsizetype at = index;
        for (int depth = 0; depth < kMaxDepth; ++depth) {
            const qsizetype parent = indexOf(m_rows[at].ppid);
            if (parent < 0 || parent == index || !takesPart(parent))
                return false;
            if (test(roleAt(parent)))
                return true;
            at = parent;
        }
        return false;
    }

    // Each front-end's session is rooted at its outermost launcher, but never
    // at one that launched other front-ends too: one session per front-end,
    // also under a program that starts several.
    void addFrontEnds(QHash<qint64, Session>& sessions) {
        const auto parentOf = [this](qint64 ppid) -> std::optional<Parent> {
            const qsizetype i = indexOf(ppid);
            if (i < 0 || !takesPart(i))
                return std::nullopt;
            return Parent{&m_rows[i], loweredAt(i)};
        };
        QList<std::pair<qsizetype, Chain>> chains;
        QHash<qint64, int> frontEndsBelow;
        for (const qsizetype top : std::as_const(m_tops)) {
            chains.append({top, climb(m_rows[top], loweredAt(top), parentOf)});
            for (const ObservedProcess* row : chains.back().second)
                ++frontEndsBelow[row->pid];
        }
        std::sort(chains.begin(), chains.end(),
                  [](const auto& a, const auto& b) { return a.first < b.first; });
        for (auto& [top, chain] : chains) {
            qsizetype length = 1;
            while (length < chain.size() && frontEndsBelow.value(chain[length]->pid) == 1)
                ++length;
            chain.resize(length);
            const ObservedProcess& root = *chain.back();
            auto session = sessions.find(root.pid);
            if (session == sessions.end()) {
                Session fresh;
                fresh.group.root = root;
                session = sessions.insert(root.pid, fresh);
            }
            for (const ObservedProcess* row : chain)
                session->group.memberPIDs.insert(row->pid);
            session->interactive = session->interactive || roleAt(top) == CodexRole::interactive;
            const ObservedProcess& process = m_rows[top];
            if (session->cwd.isEmpty())
                session->cwd = process.cwd;
            if (!session->startedAt)
                session->startedAt = process.startedAt;
        }
    }

    // A tool command: a sandbox helper, or a shell a Codex process started.
    bool isCommand(qsizetype index, CodexRole role) const {
        if (role == CodexRole::helper)
            return m_rows[index].command.contains(QStringLiteral("sandbox"));
        if (role != CodexRole::none)
            return false;
        const qsizetype parent = indexOf(m_rows[index].ppid);
        if (parent < 0 || roleAt(parent) == CodexRole::none)
            return false;
        const QString& command = m_rows[index].command;
        return command.contains(QStringLiteral("sh -c ")) ||
               command.contains(QStringLiteral("sh -lc "));
    }

    // Adds the tree below (and with) the given process: every process not
    // already counted, down through any process group or session, except the
    // shared service and other sessions' roots.
    void addTree(Session& session, qsizetype top, const QHash<qint64, Session>& sessions) {
        std::vector<qsizetype> pending{top};
        ActivityAggregate& group = session.group;
        while (!pending.empty()) {
            const qsizetype index = pending.back();
            pending.pop_back();
            const ObservedProcess& row = m_rows[index];
            if (!m_counted.insert(row.pid).second)
                continue;
            ++group.processCount;
            group.totalCPUPercent += row.cpuPercent;
            group.cumulativeCPUTime += row.cpuTime;
            if (!group.hasHotState)
                group.hasHotState = isHotState(row.state);
            const CodexRole role = roleAt(index);
            if (role != CodexRole::none)
                group.memberPIDs.insert(row.pid);
            // Its own Codex executable, under its shim at most: a Codex a tool
            // command started writes a log of its own.
            const qsizetype parent = indexOf(row.ppid);
            if (isFrontEnd(role) && isCodexExecutable(row.executable) &&
                (m_tops.contains(index) || (parent >= 0 && isFrontEnd(roleAt(parent)))))
                session.logHolders.append(row.pid);
            if (isCommand(index, role))
                ++session.runningCommands;
            // m_counted ends any loop a corrupt table could make.
            forEachChild(index, [&](qsizetype child) {
                if (roleAt(child) != CodexRole::service && !sessions.contains(m_rows[child].pid))
                    pending.push_back(child);
            });
        }
    }

    // The service runs the tool commands of every TUI of its CODEX_HOME, each
    // in that TUI's project directory or below it: a command tree there is
    // the work of the TUI whose directory is the closest one above it. Two
    // TUIs in that directory cannot be told apart, and get none of it.
    void attributeServiceWork(qsizetype service, QHash<qint64, Session>& sessions) {
        forEachChild(service, [&](qsizetype child) {
            const QString& cwd = m_rows[child].cwd;
            if (cwd.isEmpty() || roleAt(child) == CodexRole::service)
                return;
            Session* owner = nullptr;
            bool ambiguous = false;
            for (Session& session : sessions) {
                if (!session.interactive || !isSameOrBelow(cwd, session.cwd))
                    continue;
                if (owner && owner->cwd.size() == session.cwd.size()) {
                    ambiguous = true;
                } else if (!owner || session.cwd.size() > owner->cwd.size()) {
                    owner = &session;
                    ambiguous = false;
                }
            }
            if (owner && !ambiguous)
                addTree(*owner, child, sessions);
        });
    }

    static bool isSameOrBelow(const QString& path, const QString& directory) {
        if (directory.isEmpty() || !path.startsWith(directory))
            return false;
        return path.size() == directory.size() || directory.endsWith(u'/') ||
               path.at(directory.size()) == u'/';
    }

    const QList<ObservedProcess>& m_rows;
    bool m_ascending = true;
    std::unordered_map<qint64, qsizetype> m_indexByPID;
    QList<QString> m_lowered; // null until needed
    QList<std::pair<qsizetype, CodexRole>> m_codex;
    std::unordered_map<qsizetype, CodexRole> m_roleByIndex;
    struct Child {
        qint64 ppid;
        qint64 pid;
        qsizetype index;
    };
    std::vector<Child> m_byParent;
    std::unordered_set<qint64> m_counted; // a process counts for one session only
    QSet<qsizetype> m_tops;               // front-ends below no other Codex process
};

} // namespace

QList<DetectedProcessSample> detectCodexProcesses(const QList<ObservedProcess>& rows,
                                                  QSet<qint64>* processesOfInterest) {
    SessionFinder finder(rows);
    QList<DetectedProcessSample> samples = finder.find();
    if (processesOfInterest)
        *processesOfInterest = finder.processesOfInterest();
    return samples;
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
    QSet<qint64> ofInterest;
    QList<DetectedProcessSample> samples = detectCodexProcesses(source.snapshot(), &ofInterest);
    source.setProcessesOfInterest(std::move(ofInterest));
    return samples;
}

} // namespace brenvik
