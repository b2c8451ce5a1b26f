#pragma once
// What every screen needs to know about the running application: the language
// chosen in the options and the installation folder the translations come from.
// The main frame sets them; screens only read them.

#include <QString>

namespace zelko::ui {

int currentLanguageId();
void setCurrentLanguageId(int langId);

// The installation folder: $ZELKO_V24R02 when set (kept as given, so an empty
// value gives paths that begin at the root, as the original's do); otherwise the
// folder the translations were installed or built into beside the program.
QString installationFolder();

}  // namespace zelko::ui
