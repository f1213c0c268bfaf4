#pragma once

#include <QObject>
#include <QString>
#include <optional>

namespace brenvik {

// What every preference control's model has: the last failure, which the
// control shows in red until a change succeeds, and objectWillChange(), which
// comes before each published change (see publish()).
class PreferenceController : public QObject {
    Q_OBJECT
    Q_PROPERTY(std::optional<QString> lastError READ lastError NOTIFY lastErrorChanged)

public:
    [[nodiscard]] const std::optional<QString>& lastError() const noexcept { return m_lastError; }

Q_SIGNALS:
    void objectWillChange();
    void lastErrorChanged(const std::optional<QString>& lastError);

protected:
    using QObject::QObject;
    // Publishes the failure, or clears it with nullopt.
    void setLastError(std::optional<QString> error);

private:
    std::optional<QString> m_lastError;
};

} // namespace brenvik
