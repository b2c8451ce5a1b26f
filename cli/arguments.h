#pragma once
// The arguments of one command: options that take a value, and positional arguments.

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelko::cli {

struct ArgumentSpec {
    std::vector<std::string_view> valueOptions;  // "-o", "--title", ...: each takes one value
    std::vector<std::string_view> requiredOptions;  // a subset of valueOptions
    std::vector<std::string_view> positionalNames;  // in order, for messages ("MATERIAL.zmat")
    std::size_t requiredPositionals = 0;  // the first ones are required, the rest optional
    std::vector<std::string_view> flagOptions = {};  // "--weighted", ...: take no value
};

struct ParsedArguments {
    bool help = false;
    std::vector<std::string> positionals;
    std::map<std::string, std::string, std::less<>> options;
    std::vector<std::string> flags;

    const std::string* option(std::string_view name) const;
    bool flag(std::string_view name) const;
};

// "--help" or "-h" anywhere (before "--") asks for help and wins over every other
// complaint. Long options also take "--name=value"; after "--" everything is positional,
// so a file name may begin with "-".
std::optional<ParsedArguments> parseArguments(
    const std::vector<std::string>& args, const ArgumentSpec& accepted, std::string& error);

// The option's value as a number; the whole text must be one finite number.
[[nodiscard]] bool numberOption(const ParsedArguments& args, std::string_view name, double& value, std::string& error);
// The option's value as a whole number within [minimum, maximum].
[[nodiscard]] bool integerOption(const ParsedArguments& args, std::string_view name, long long minimum,
                                 long long maximum, long long& value, std::string& error);

}  // namespace zelko::cli
