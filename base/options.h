#pragma once
// The application's options: the language the screens are shown in, kept in a
// small JSON file in the user's settings folder.

#include <filesystem>
#include <string>
#include <string_view>

#include <json/value.h>

namespace zelko {

// 0 English, 1 Korean, 2 Japanese; any other number shows English.
class Language {
public:
    virtual ~Language() = default;

    // "English", "Korean" or "Japanese": also the folder of the translation files.
    std::string languageName() const;

    int langId = 0;
};

class Option : public Language {
public:
    // Takes "Language"/"langId" from the document; a missing key gives 0. Bytes
    // that are not JSON, or a document of the wrong shape, leave langId as it is.
    void read(std::string_view bytes);
    // The same from a file; a missing or unreadable file leaves langId as it is.
    void load(const std::filesystem::path& path);

    Json::Value toJson() const;
    // The file's bytes: jsoncpp's default stream writer output of toJson().
    std::string toText() const;
    // Replaces the file whole; false when it could not be written (the caller
    // may go on: the language still applies for this run).
    bool save(const std::filesystem::path& path) const;
};

}  // namespace zelko
