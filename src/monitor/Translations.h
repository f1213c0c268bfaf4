#pragma once

#include <QLocale>

namespace brenvik {

// Installs Brenvik's texts and Qt's own in the first of the user's languages
// (those of LANGUAGE, else that of LC_ALL, LC_MESSAGES or LANG, as
// QLocale::system() reads them) that Brenvik has a translation for. English, the source language,
// ends the search: it needs no translation. Needs the application object.
void installTranslations();

// Installs Brenvik's translation for `locale`, and Qt's own with it; false
// when Brenvik has none. The last one installed wins.
bool installTranslation(const QLocale& locale);

// The locale of the installed translation, QLocale::c() without one: names
// a text takes from a locale (a weekday) then match the text's language.
[[nodiscard]] QLocale translationLocale();

} // namespace brenvik
