#include "ui/uisettings.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace zelko::ui {

namespace {
int languageId = 0;
}

int currentLanguageId() { return languageId; }

void setCurrentLanguageId(int langId) { languageId = langId; }

QString installationFolder()
{
    if (qEnvironmentVariableIsSet("ZELKO_V24R02"))
        return qEnvironmentVariable("ZELKO_V24R02");
    // Built tree: the program sits beside language/; installed: bin/ beside share/zelko-mat/.
    const QString programFolder = QCoreApplication::applicationDirPath();
    for (const QString& candidate : {programFolder, programFolder + QStringLiteral("/../share/zelko-mat")})
        if (QFileInfo(candidate + QStringLiteral("/language")).isDir() || QFileInfo(candidate + QStringLiteral("/docs")).isDir())
            return QDir::cleanPath(candidate);
    return programFolder;
}

}  // namespace zelko::ui
