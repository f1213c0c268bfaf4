#pragma once

#include <QtGlobal>

namespace brenvik {

// When the /proc source reads a process's files again, and why. Reading is
// what a refresh costs; a reading kept too long is a session seen late or
// missed. Each snapshot is one generation: a process seen in the previous
// one is "continuing".
class ReReadPolicy {
public:
    // A process that matters to no session is read once in this many
    // snapshots (every 10 s at 2 s a refresh), so that one which turns into
    // Codex is seen soon enough while most of the table costs nothing.
    static constexpr int kRotationSlices = 5;

    // Starts a snapshot; returns its generation.
    quint64 nextGeneration() noexcept { return ++m_generation; }
    [[nodiscard]] quint64 generation() const noexcept { return m_generation; }
    // Whether an entry last saw the process in the previous snapshot.
    [[nodiscard]] bool seenLastTime(quint64 entryGeneration) const noexcept {
        return entryGeneration == m_generation - 1;
    }

    // Whether a row seen last time may stand as it was read, without even
    // its stat: not what any session is made of (those are read every time),
    // and not on its turn in the rotation. Kernel threads never turn into
    // anything else.
    [[nodiscard]] bool keepsRow(qint64 pid, bool isKernelThread, bool ofInterest) const noexcept {
        return !ofInterest &&
               (isKernelThread || (pid + qint64(m_generation)) % kRotationSlices != 0);
    }

    // Whether its command line must be read: it is new (or its PID reused),
    // exec or re-titling changed its comm, or the last reading was not final.
    [[nodiscard]] static bool readsCommandLine(bool continuing, bool commChanged,
                                               bool commandIsFinal) noexcept {
        return !continuing || commChanged || !commandIsFinal;
    }

    // Whether a command line just read is final. An empty one is, only for a
    // kernel thread; a process in the middle of exec shows its new comm
    // before its arguments, and one between fork and exec its Codex
    // parent's command line.
    [[nodiscard]] static bool isFinal(bool empty, bool isKernelThread,
                                      bool sameAsCodexParent) noexcept {
        return (!empty || isKernelThread) && !sameAsCodexParent;
    }

private:
    quint64 m_generation = 1; // so that no snapshot mistakes a fresh entry (0) for the previous one
};

} // namespace brenvik
