#pragma once

#include <QStringList>

namespace snaplift {

// Has the window, and the toolkit where its own texts are installed, speak the first of the
// languages that it knows: a list of names like "de-AT", the best first, as QLocale::uiLanguages()
// gives it. English, the language of the sources, needs no translation. The answer is the name of
// the language, "en" where none is known or this build has none. Before the first window is made.
QString installTranslations(const QStringList& languages);

}  // namespace snaplift
