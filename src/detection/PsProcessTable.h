#pragma once

#include "detection/ProcessSnapshot.h"

namespace brenvik {

// Runs /bin/ps -axww -o pid=,ppid=,state=,%cpu=,time=,command= once and
// parses its rows, in output order. Throws ProcessSnapshotError.
[[nodiscard]] QList<ObservedProcess> readProcessTable();

// The same with another executable in place of /bin/ps, for tests only.
[[nodiscard]] QList<ObservedProcess> readProcessTable(const QString& executable);

class PsProcessTableSource final : public ProcessTableSource {
public:
    [[nodiscard]] QList<ObservedProcess> snapshot() override { return readProcessTable(); }
};

} // namespace brenvik
