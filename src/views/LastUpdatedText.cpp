#include "views/LastUpdatedText.h"

#include <QCoreApplication>

namespace brenvik {

namespace {

struct UpdatedText {
    Q_DECLARE_TR_FUNCTIONS(UpdatedText)
};

} // namespace

QString lastUpdatedText(const std::optional<QDateTime>& lastUpdated, const QLocale& locale) {
    if (!lastUpdated)
        return UpdatedText::tr("Checking now");
    return UpdatedText::tr("Updated %1")
        .arg(locale.toString(lastUpdated->toLocalTime().time(), QLocale::ShortFormat));
}

} // namespace brenvik
