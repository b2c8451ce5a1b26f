#pragma once
// Pictures of a fit drawn by gnuplot: the measured points and the fitted law,
// for the engineer to judge a fit by eye before using it.

#include <filesystem>
#include <string>
#include <vector>

#include "base/environment.h"
#include "cold/lawcomparison.h"
#include "hot/plastic_hot.h"
#include "material/project.h"

namespace zelko::cli {

// The cold fit: measured true curve and each law, over the measured range and
// extrapolated to true strain 1. The script holds its data inline.
std::string coldFitScript(const std::string& title, const std::vector<const LawComparison*>& laws);

// The hot fit: one panel per temperature, measured curves as points and the
// model's stress as lines, a colour per strain rate.
std::string hotFitScript(const std::string& title, const PLASTIC_HOT& model);
// The picture's height for the hot fit's panels (three to a row).
int hotFitPictureHeight(const PLASTIC_HOT& model);

// "MATERIAL - subject", or the subject alone for a material without a title.
std::string pictureTitle(const Project& material, const std::string& subject);

// Draws the script into png with the environment's gnuplot; false with the reason.
bool drawPicture(const std::string& script, const std::filesystem::path& png, int width, int height,
                 const Environment& environment, std::string& error);

}  // namespace zelko::cli
