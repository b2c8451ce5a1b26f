#include "base/environment.h"

#include <cstdlib>
#include <system_error>

#include "base/textfile.h"

namespace zelko {

namespace {

std::string variable(const char* name)
{
    const char* value = std::getenv(name);
    return value ? std::string(value) : std::string();
}

}  // namespace

std::string installationVariableName() { return formatText("ZELKO_V%2dR%02d", 24, 2); }

std::filesystem::path defaultExchangeFolder()
{
#ifdef _WIN32
    return std::filesystem::path("C:\\temp\\ZELKO");
#else
    std::error_code ec;
    std::filesystem::path temp = std::filesystem::temp_directory_path(ec);
    if (ec)
        temp = "/tmp";
    return temp / "ZELKO";
#endif
}

Environment Environment::fromProcess()
{
    Environment environment;
    const std::string exchange = variable("ZELKO_TEMP");
    environment.exchangeFolder = exchange.empty() ? defaultExchangeFolder() : std::filesystem::path(exchange);
    environment.installationFolder = variable(installationVariableName().c_str());
    if (const std::string gnuplot = variable("ZELKO_GNUPLOT"); !gnuplot.empty())
        environment.gnuplotProgram = gnuplot;
    environment.tensileSolver = variable("ZELKO_TENSILE_SOLVER");
    environment.searchPath = variable("PATH");
    return environment;
}

}  // namespace zelko
