#include "base/options.h"

#include <memory>
#include <system_error>

#include <json/reader.h>
#include <json/writer.h>

#include "base/fileio.h"

namespace zelko {

std::string Language::languageName() const
{
    switch (langId) {
    case 1:
        return "Korean";
    case 2:
        return "Japanese";
    default:
        return "English";
    }
}

void Option::read(std::string_view bytes)
{
    Json::Value root;
    std::string errors;
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    try {
        if (!reader->parse(bytes.data(), bytes.data() + bytes.size(), &root, &errors))
            return;
    } catch (const Json::Exception&) {  // nesting beyond the reader's stack limit
        return;
    }
    // jsoncpp throws when a member is asked of an array, a number or a string.
    const auto canIndex = [](const Json::Value& value) { return value.isNull() || value.isObject(); };
    if (!canIndex(root))
        return;
    const Json::Value& language = root["Language"];
    if (!canIndex(language))
        return;
    const Json::Value& id = language["langId"];
    if (!id.isConvertibleTo(Json::intValue))
        return;
    langId = id.asInt();
}

void Option::load(const std::filesystem::path& path)
{
    std::string error;
    if (const auto bytes = readFileBytes(path, error))
        read(*bytes);
}

Json::Value Option::toJson() const
{
    Json::Value root(Json::objectValue);
    root["Language"]["langId"] = langId;
    return root;
}

std::string Option::toText() const { return Json::writeString(Json::StreamWriterBuilder(), toJson()); }

bool Option::save(const std::filesystem::path& path) const
{
    // The settings folder of a new user does not hold our folder yet.
    std::error_code ignored;
    if (path.has_parent_path())
        std::filesystem::create_directories(path.parent_path(), ignored);
    std::string error;
    return saveFileAtomically(path, toText(), error);
}

}  // namespace zelko
