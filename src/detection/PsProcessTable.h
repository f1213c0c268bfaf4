#pragma once

#include "detection/ProcessSnapshot.h"

namespace brenvik {

// Runs /bin/ps -axww -o pid=,ppid=,state=,%cpu=,time=,command= once and
// parses its rows, in output order. Throws ProcessSnapshotError.
[[nodiscard]] QList<ObservedProcess> readProcessTable();

// The same with another executable in place of /bin/ps, for tests only.
[[nodiscard]] QList<ObservedProcess> readProcessTable(const QString& executable);

// The rows of a successful run's output, already decoded and trimmed: one per
// line that parses, in output order.
[[nodiscard]] QList<ObservedProcess> parseProcessListing(QStringView output);

class PsProcessTableSource final : public ProcessTableSource {
public:
    [[nodiscard]] QList<ObservedProcess> snapshot() override { return readProcessTable(); }
};

} // namespace brenvik
