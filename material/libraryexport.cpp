#include "material/libraryexport.h"

#include <cstdio>

namespace zelko {

namespace {

constexpr std::string_view kRule =
    "********************************************************************************\n";

}  // namespace

bool writeLibraryEntry(const Project& project, TextWriter& out)
{
    const Plastic& model = *project.libraryModel();
    out.put(kRule);
    out.put(std::string_view("*MaterialLibrary\n"));
    out.put(kRule);
    if (model.modelKind == HotModel)
        out.format("*ZelkoLibrary/Material/Hot/%d\n\n", model.modelNumber);
    else
        out.format("*ZelkoLibrary/Material/Cold/%d\n\n", model.modelNumber);
    out.put(std::string_view("*Version\n"));
    out.put(std::string_view("      1\n"));
    out.put(std::string_view("*Unit                                                       (MPa)\n"));
    out.put(std::string_view("      2\n"));
    project.elastic->writeLibraryBlock(out, 6);
    out.put(std::string_view("*PlasticityModel                                            (MPa)\n"));
    const bool wroteModel = model.writeLibraryBlock(out, 6);
    out.put(std::string_view("*ThermalConductivity                                        (C,W/(mm*C))\n"));
    project.conductivity->writeLibraryBlock(out, 6);
    out.put(std::string_view("*VolumetricHeatCapacity                                     (C,(W*s)/(mm^3*C))\n"));
    project.heatCapacity->writeLibraryBlock(out, 6);
    return wroteModel;
}

std::optional<std::string> proposedLibraryPath(const std::string& installationFolder, char separator)
{
    if (installationFolder.empty())
        return std::nullopt;
    std::string folder = installationFolder;
    while (!folder.empty() && (folder.back() == separator || folder.back() == '\\'))
        folder.pop_back();
    const std::string s(1, separator);
    return folder + s + "Library" + s + "Library_Material" + s + "sample.z3dlib";
}

}  // namespace zelko
