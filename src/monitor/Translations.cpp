#include "monitor/Translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

namespace brenvik {

namespace {

QLocale& installedLocale() {
    static QLocale locale = QLocale::c();
    return locale;
}

bool install(const QLocale& locale, const QString& name, const QString& directory) {
    auto* translator = new QTranslator(QCoreApplication::instance());
    if (translator->load(locale, name, QStringLiteral("_"), directory) &&
        QCoreApplication::installTranslator(translator))
        return true;
    delete translator;
    return false;
}

} // namespace

void installTranslations() {
    for (const QString& language : QLocale::system().uiLanguages()) {
        const QLocale locale(language);
        if (locale.language() == QLocale::English || locale.language() == QLocale::C ||
            installTranslation(locale))
            return;
    }
}

bool installTranslation(const QLocale& locale) {
    if (!install(locale, QStringLiteral("brenvik"), QStringLiteral(":/i18n")))
        return false;
    installedLocale() = locale;
    // Qt's own texts (standard buttons, input method menus), where installed.
    install(locale, QStringLiteral("qtbase"), QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    return true;
}

QLocale translationLocale() {
    return installedLocale();
}

} // namespace brenvik
