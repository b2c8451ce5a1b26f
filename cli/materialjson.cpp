#include "cli/materialjson.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <initializer_list>
#include <memory>

#include "base/numbers.h"
#include "hot/plastic_hot.h"
#include "models/roomori.h"

namespace zelko::cli {

namespace {

Json::Value pointsToJson(const PropertyTable& table)
{
    Json::Value points(Json::arrayValue);
    for (const TablePoint& p : table) {
        Json::Value pair(Json::arrayValue);
        pair.append(p.temperature);
        pair.append(p.value);
        points.append(std::move(pair));
    }
    return points;
}

Json::Value listToJson(const std::vector<double>& values)
{
    Json::Value list(Json::arrayValue);
    for (const double v : values)
        list.append(v);
    return list;
}

Json::Value modelToJson(const Plastic* model)
{
    if (!model)
        return Json::Value(Json::nullValue);
    Json::Value json(Json::objectValue);
    json["kind"] = model->modelKind;
    json["number"] = model->modelNumber;
    if (const auto* cold = dynamic_cast<const RoomOri*>(model)) {
        // An input kind outside the three lists is written with no points.
        const bool known = cold->inputKind >= 0 && cold->inputKind < static_cast<int>(cold->curves.size());
        json["inputKind"] = cold->inputKind;
        json["points"] = Json::UInt64(known ? cold->curves[static_cast<std::size_t>(cold->inputKind)].size() : 0);
        json["startIndex"] = cold->startIndex;
        json["endIndex"] = cold->endIndex;
    } else if (const auto* hot = dynamic_cast<const PLASTIC_HOT*>(model)) {
        json["strainRates"] = listToJson(hot->strainRates);
        json["temperatures"] = listToJson(hot->temperatures);
        json["strains"] = listToJson(hot->strains);
        json["hotFlag"] = hot->hotFlag;
    }
    return json;
}

bool complain(std::string& error, const std::string& where, std::string_view what)
{
    error = where.empty() ? std::string(what) : where + ": " + std::string(what);
    return false;
}

// jsoncpp reports "* Line L, Column C\n  message\n" per error; the first one is enough.
std::string firstParseError(const std::string& errors)
{
    const auto lines = split(std::string_view(errors), "\n");
    if (lines.size() < 2 || !lines[0].starts_with("* "))
        return "not valid JSON: " + errors;
    const std::string& detail = lines[1];
    const auto start = detail.find_first_not_of(' ');
    return lines[0].substr(2) + ": " + (start == std::string::npos ? detail : detail.substr(start));
}

bool parseJson(std::string_view text, Json::Value& root, std::string& error)
{
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);  // no comments, no duplicate keys, no trailing text
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    std::string errors;
    try {
        if (reader->parse(text.data(), text.data() + text.size(), &root, &errors))
            return true;
    } catch (const Json::Exception& e) {
        // Nesting deeper than the parser's stack limit ends in an exception.
        return complain(error, {}, std::string("not valid JSON: ") + e.what());
    }
    error = firstParseError(errors);
    return false;
}

bool checkMembers(const Json::Value& object, const std::string& where, std::initializer_list<std::string_view> known,
    std::initializer_list<std::string_view> required, std::string& error)
{
    for (const std::string& name : object.getMemberNames())
        if (std::find(known.begin(), known.end(), name) == known.end())
            return complain(error, where, "unknown member \"" + name + "\"");
    for (const std::string_view name : required)
        if (!object.isMember(name.data(), name.data() + name.size()))
            return complain(error, where, "missing member \"" + std::string(name) + "\"");
    return true;
}

bool readNumber(const Json::Value& value, const std::string& where, double& number, std::string& error)
{
    if (!value.isNumeric())
        return complain(error, where, "expected a number");
    number = value.asDouble();
    return true;
}

// What a value of a property may be: a modulus, density, conductivity or heat
// capacity at or below zero is a typing mistake, not a material.
enum class ValueRule { Any, Positive, PoissonRatio };

constexpr std::array<const char*, kElasticPropertyCount> kElasticNames = {"Young's modulus", "Poisson's ratio",
                                                                          "density", "thermal expansion"};
constexpr std::array<ValueRule, kElasticPropertyCount> kElasticRules = {ValueRule::Positive, ValueRule::PoissonRatio,
                                                                        ValueRule::Positive, ValueRule::Any};

bool readPoints(const Json::Value& value, const std::string& where, PropertyTable& points, std::string& error,
                ValueRule rule = ValueRule::Positive)
{
    if (!value.isArray())
        return complain(error, where, "expected an array of [temperature, value] pairs");
    points.clear();
    points.reserve(value.size());
    for (Json::ArrayIndex i = 0; i < value.size(); ++i) {
        const std::string at = where + "[" + std::to_string(i) + "]";
        const Json::Value& pair = value[i];
        if (!pair.isArray() || pair.size() != 2)
            return complain(error, at, "expected [temperature, value]");
        TablePoint point;
        if (!readNumber(pair[0], at + "[0]", point.temperature, error)
            || !readNumber(pair[1], at + "[1]", point.value, error))
            return false;
        // Tables are looked up by temperature: a repeated or falling one has no meaning.
        if (!points.empty() && !(point.temperature > points.back().temperature))
            return complain(error, at + "[0]",
                            formatText("temperature %g does not follow %g; temperatures must rise", point.temperature,
                                       points.back().temperature));
        if (rule == ValueRule::Positive && !(point.value > 0.0))
            return complain(error, at + "[1]", formatText("%g is not above 0", point.value));
        if (rule == ValueRule::PoissonRatio && !(point.value >= 0.0 && point.value < 0.5))
            return complain(error, at + "[1]", formatText("Poisson's ratio %g is outside 0 to 0.5", point.value));
        points.push_back(point);
    }
    return true;
}

bool readTitle(const Json::Value& value, std::u16string& title, std::string& error)
{
    static const std::string where = "title";
    if (!value.isString())
        return complain(error, where, "expected a string");
    const std::string utf8 = value.asString();
    title = utf8ToUtf16(utf8);
    if (utf16ToUtf8(title) != utf8)
        return complain(error, where, "not valid UTF-8");
    if (title.find(u'\0') != std::u16string::npos)
        return complain(error, where, "holds a NUL character");
    // A line end inside would put the rest of the title on lines the reader takes for sections.
    if (const auto lineEnd = title.find(u'\n'); lineEnd != std::u16string::npos && lineEnd + 1 != title.size())
        return complain(error, where, "a line end may only close the title");
    if (title.size() > kTitleCapacity - 1)
        return complain(error, where,
            "longer than " + std::to_string(kTitleCapacity - 1) + " UTF-16 units (" + std::to_string(title.size())
                + ")");
    return true;
}

bool readElastic(const Json::Value& value, ELASTIC& elastic, std::string& error)
{
    if (!value.isArray() || value.size() != kElasticPropertyCount)
        return complain(
            error, "elastic", "expected 4 properties: Young's modulus, Poisson's ratio, density, thermal expansion");
    for (int i = 0; i < kElasticPropertyCount; ++i) {
        const auto k = static_cast<std::size_t>(i);
        const std::string where = "elastic[" + std::to_string(i) + "]";
        const Json::Value& property = value[static_cast<Json::ArrayIndex>(i)];
        if (!property.isObject())
            return complain(error, where, "expected {\"form\": F, \"points\": [[T, V], ...]}");
        if (!checkMembers(property, where, {"name", "form", "points"}, {"form", "points"}, error))
            return false;
        // The name 'info --names' prints must stand at its own place.
        if (property.isMember("name") && property["name"] != kElasticNames[k])
            return complain(error, where + ".name", std::string("expected \"") + kElasticNames[k] + "\"");
        const Json::Value& form = property["form"];
        if (!form.isInt() || (form.asInt() != 1 && form.asInt() != 2))
            return complain(error, where + ".form", "expected 1 (a constant) or 2 (a table against temperature)");
        PropertyTable points;
        if (!readPoints(property["points"], where + ".points", points, error, kElasticRules[k]))
            return false;
        // The file keeps only the first point of a constant; more would be lost silently.
        if (form.asInt() == 1 && points.size() > 1)
            return complain(error, where + ".points", "a constant (form 1) holds at most one point");
        elastic.propertyType[k] = form.asInt();
        elastic.tables[k] = std::move(points);
    }
    return true;
}

bool checkVersion(const Json::Value& value, std::string& error)
{
    if (!value.isArray() || value.size() != 2 || !value[0].isInt() || !value[1].isInt())
        return complain(error, "version", "expected [major, minor]");
    return true;
}

// The fewest significant digits with which "%.*g" prints the number so that it reads
// back the same, and without an exponent while the integer part fits in 17 digits.
int digitsFor(double number)
{
    if (!std::isfinite(number))
        return 1;  // printed as null or 1e+9999 whatever the precision
    constexpr int kMaxDigits = 17;  // always enough for a double
    const double magnitude = std::fabs(number);
    int digits = magnitude >= 1 ? std::min(kMaxDigits, static_cast<int>(std::log10(magnitude)) + 1) : 1;
    while (digits < kMaxDigits && toDouble(formatText("%.*g", digits, number)) != number)
        ++digits;
    return digits;
}

// One precision serves the whole document: the largest any of its numbers needs, so
// every number reads back exactly and a plain table stays free of 0.29999999999999999.
int documentPrecision(const Json::Value& value)
{
    if (value.type() == Json::realValue)
        return digitsFor(value.asDouble());
    int digits = 1;
    if (value.isArray() || value.isObject())
        for (const Json::Value& member : value)
            digits = std::max(digits, documentPrecision(member));
    return digits;
}

}  // namespace

Json::Value materialToJson(const Project& project, int major, int minor, bool names)
{
    Json::Value json(Json::objectValue);
    json["title"] = utf16ToUtf8(project.title);
    Json::Value version(Json::arrayValue);
    version.append(major);
    version.append(minor);
    json["version"] = std::move(version);
    Json::Value elastic(Json::arrayValue);
    for (std::size_t i = 0; i < project.elastic->tables.size(); ++i) {
        Json::Value property(Json::objectValue);
        if (names && i < kElasticNames.size())
            property["name"] = kElasticNames[i];
        property["form"] = project.elastic->propertyType[i];
        property["points"] = pointsToJson(project.elastic->tables[i]);
        elastic.append(std::move(property));
    }
    json["elastic"] = std::move(elastic);
    json["model"] = modelToJson(project.activeModel.get());
    json["conductivity"] = pointsToJson(project.conductivity->points);
    json["heatCapacity"] = pointsToJson(project.heatCapacity->points);
    return json;
}

std::optional<Project> materialFromJson(std::string_view text, std::string& error)
{
    if (text.size() > kMaxMaterialJsonBytes) {
        complain(error, {}, "larger than " + std::to_string(kMaxMaterialJsonBytes) + " bytes");
        return std::nullopt;
    }
    Json::Value root;
    if (!parseJson(text, root, error))
        return std::nullopt;
    if (!root.isObject()) {
        complain(error, {}, "expected a JSON object");
        return std::nullopt;
    }
    if (!checkMembers(root, {}, {"title", "version", "elastic", "model", "conductivity", "heatCapacity"},
            {"title", "elastic", "conductivity", "heatCapacity"}, error))
        return std::nullopt;
    if (root.isMember("version") && !checkVersion(root["version"], error))
        return std::nullopt;
    if (root.isMember("model") && !root["model"].isNull()) {
        complain(error, "model", "must be null: a flow-stress model cannot be built from JSON");
        return std::nullopt;
    }
    Project project;
    if (!readTitle(root["title"], project.title, error) || !readElastic(root["elastic"], *project.elastic, error)
        || !readPoints(root["conductivity"], "conductivity", project.conductivity->points, error)
        || !readPoints(root["heatCapacity"], "heatCapacity", project.heatCapacity->points, error))
        return std::nullopt;
    return project;
}

std::string jsonText(const Json::Value& value)
{
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "  ";
    builder["precision"] = documentPrecision(value);
    builder["emitUTF8"] = true;
    return Json::writeString(builder, value) + "\n";
}

}  // namespace zelko::cli
