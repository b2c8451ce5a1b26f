#pragma once
// Files of the screen tests: bytes read back, the measured hot series, and the folders a test's screens
// use instead of the user's (the exchange folder comes from $ZELKO_TEMP, set by
// the test before any screen reads it).

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <QStringList>

#include <string>

#include "base/environment.h"
#include "base/fileio.h"
#include "hot/hotcsv.h"

namespace zelko::test {

inline std::string fileBytes(const QString& path)
{
    std::string error;
    auto bytes = readFileBytes(std::filesystem::path(path.toStdU16String()), error);
    return bytes ? *bytes : std::string();
}

// Every entry of a folder, hidden ones too: what a failed save must leave as it was.
inline QStringList filesIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

// Whether this process can make a file there (root ignores a folder's permissions).
inline bool canCreateIn(const QString& folder)
{
    QFile probe(folder + QStringLiteral("/.probe"));
    if (!probe.open(QIODevice::WriteOnly))
        return false;
    probe.remove();
    return true;
}

inline Environment testEnvironment()
{
    Environment environment;
    environment.exchangeFolder = std::filesystem::path(qgetenv("ZELKO_TEMP").toStdString());
    environment.tensileSolver = "/bin/true";
    return environment;
}

// The measured Gleeble series, and its data set as fit-hot builds it.
inline const QString kGleeble = QStringLiteral(ZELKO_TEST_DATA "/measured/hot-compression-medium-carbon-steel.csv");
inline PLASTIC_HOT measuredDataSet()
{
    std::string error;
    std::optional<PLASTIC_HOT> read = readHotCurvesCsv(fileBytes(kGleeble), HotCsvOptions{}, error);
    if (!read)
        return {};
    read->strains = defaultSampleStrains(*read);
    return *read;
}

// The test environment with an exchange folder that can't be made: a file
// stands in the scratch folder where its parent should be.
inline Environment unreachableExchange(const QString& scratchFolder)
{
    Environment blocked = testEnvironment();
    const std::filesystem::path file = std::filesystem::path(scratchFolder.toStdString()) / "a-file";
    std::string error;
    saveFileAtomically(file, "x", error);
    blocked.exchangeFolder = file / "ZELKO";
    return blocked;
}

}  // namespace zelko::test
