#pragma once
// Files of the screen tests: bytes read back, and the folders a test's screens
// use instead of the user's (the exchange folder comes from $ZELKO_TEMP, set by
// the test before any screen reads it).

#include <QByteArray>
#include <QString>

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

inline Environment testEnvironment()
{
    Environment environment;
    environment.exchangeFolder = std::filesystem::path(qgetenv("ZELKO_TEMP").toStdString());
    environment.tensileSolver = "/bin/true";
    return environment;
}

// The measured Gleeble series, read as fit-hot reads it.
inline const QString kGleeble = QStringLiteral(ZELKO_TEST_DATA "/measured/hot-compression-medium-carbon-steel.csv");
inline PLASTIC_HOT measuredDataSet()
{
    std::string error;
    std::optional<PLASTIC_HOT> read = readHotCurvesCsv(fileBytes(kGleeble), HotCsvOptions{}, error);
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
