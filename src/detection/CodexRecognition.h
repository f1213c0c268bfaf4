#pragma once

#include <QString>
#include <QStringView>

namespace brenvik {

// Every predicate takes a command line already lower-cased with
// lowerCasedCommand(); the records keep the command as it was read.
[[nodiscard]] QString lowerCasedCommand(QStringView command);
// The same; shares the text instead of copying it when nothing changes.
[[nodiscard]] QString lowerCasedCommand(const QString& command);

[[nodiscard]] bool isExcludedCommand(QStringView lowered);
[[nodiscard]] bool isCodexCommand(QStringView lowered);
[[nodiscard]] bool isACPXCodexCommand(QStringView lowered);
[[nodiscard]] bool isCodexACPCommand(QStringView lowered);
[[nodiscard]] bool isLauncherCommand(QStringView lowered);

// The candidate rule: a process to report.
[[nodiscard]] bool isCandidateCommand(QStringView lowered);

// The link rule: the chain walk may step from the child (already in the
// chain) up to its parent.
[[nodiscard]] bool isLauncherLink(QStringView loweredParent, QStringView loweredChild);

} // namespace brenvik
