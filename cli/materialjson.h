#pragma once
// A material as one JSON object, and back:
//   {"title": "...", "version": [major, minor],
//    "elastic": [{"form": F, "points": [[T, V], ...]} x 4],
//    "model": null or {"kind", "number", ...},
//    "conductivity": [[T, V], ...], "heatCapacity": [[T, V], ...]}

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <json/json.h>

#include "material/project.h"

namespace zelko::cli {

// Far beyond any material; bounds what the parser may build.
inline constexpr std::size_t kMaxMaterialJsonBytes = 4u * 1024u * 1024u;

// names: each elastic property also says which it is ("name": "density").
Json::Value materialToJson(const Project& project, int major, int minor, bool names = false);

// The material the JSON text describes (no flow-stress model). Temperatures must
// rise in every table; modulus, density, conductivity and heat capacity must be
// above 0 and Poisson's ratio from 0 to below 0.5. On failure, error says where
// ("elastic[2].points[0][1]: ...").
std::optional<Project> materialFromJson(std::string_view text, std::string& error);

// The tool's JSON layout: two-space indentation, UTF-8 kept as it is, final line end.
std::string jsonText(const Json::Value& value);

}  // namespace zelko::cli
