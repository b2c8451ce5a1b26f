#include "cli/arguments.h"

#include <algorithm>
#include <charconv>

#include "base/numbers.h"

namespace zelko::cli {

namespace {

bool isHelp(std::string_view arg)
{
    return arg == "--help" || arg == "-h";
}

bool contains(const std::vector<std::string_view>& names, std::string_view name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

bool ParsedArguments::flag(std::string_view name) const
{
    return std::find(flags.begin(), flags.end(), name) != flags.end();
}

const std::string* ParsedArguments::option(std::string_view name) const
{
    const auto found = options.find(name);
    return found == options.end() ? nullptr : &found->second;
}

std::optional<ParsedArguments> parseArguments(
    const std::vector<std::string>& args, const ArgumentSpec& accepted, std::string& error)
{
    ParsedArguments parsed;
    const auto endOfOptions = std::find(args.begin(), args.end(), "--");
    if (std::any_of(args.begin(), endOfOptions, [](const std::string& arg) { return isHelp(arg); })) {
        parsed.help = true;
        return parsed;
    }

    for (auto it = args.begin(); it != args.end(); ++it) {
        if (it == endOfOptions) {
            parsed.positionals.insert(parsed.positionals.end(), it + 1, args.end());
            break;
        }
        const std::string& arg = *it;
        if (arg.size() < 2 || arg[0] != '-') {
            parsed.positionals.push_back(arg);
            continue;
        }
        std::string name = arg;
        std::optional<std::string> inlineValue;
        if (const auto equals = arg.find('='); arg.starts_with("--") && equals != std::string::npos) {
            name = arg.substr(0, equals);
            inlineValue = arg.substr(equals + 1);
        }
        if (contains(accepted.flagOptions, name) && !inlineValue) {
            if (parsed.flag(name)) {
                error = "option '" + name + "' given twice";
                return std::nullopt;
            }
            parsed.flags.push_back(name);
            continue;
        }
        if (!contains(accepted.valueOptions, name)) {
            error = "unknown option '" + name + "'";
            return std::nullopt;
        }
        if (parsed.options.contains(name)) {
            error = "option '" + name + "' given twice";
            return std::nullopt;
        }
        if (!inlineValue) {
            // The next argument is the value even when it begins with "-" (a negative number).
            if (std::next(it) == endOfOptions || std::next(it) == args.end()) {
                error = "option '" + name + "' needs a value";
                return std::nullopt;
            }
            inlineValue = *++it;
        }
        parsed.options.emplace(name, std::move(*inlineValue));
    }

    if (parsed.positionals.size() > accepted.positionalNames.size()) {
        error = "unexpected argument '" + parsed.positionals[accepted.positionalNames.size()] + "'";
        return std::nullopt;
    }
    if (parsed.positionals.size() < accepted.requiredPositionals) {
        error = "missing argument " + std::string(accepted.positionalNames[parsed.positionals.size()]);
        return std::nullopt;
    }
    for (const std::string_view name : accepted.requiredOptions) {
        if (!parsed.options.contains(name)) {
            error = "missing option '" + std::string(name) + "'";
            return std::nullopt;
        }
    }
    return parsed;
}

bool numberOption(const ParsedArguments& args, std::string_view name, double& value, std::string& error)
{
    const std::string* text = args.option(name);
    if (!text) {
        error = "missing option '" + std::string(name) + "'";
        return false;
    }
    if (parseNumberField(*text, value) != NumberField::Finite) {
        error = "option '" + std::string(name) + "': '" + *text + "' is not a number";
        return false;
    }
    return true;
}

bool integerOption(const ParsedArguments& args, std::string_view name, long long minimum, long long maximum,
                   long long& value, std::string& error)
{
    const std::string* text = args.option(name);
    if (!text) {
        error = "missing option '" + std::string(name) + "'";
        return false;
    }
    const auto [end, ec] = std::from_chars(text->data(), text->data() + text->size(), value);
    if (ec != std::errc() || end != text->data() + text->size() || value < minimum || value > maximum) {
        error = "option '" + std::string(name) + "': '" + *text + "' is not a whole number from "
                + std::to_string(minimum) + " to " + std::to_string(maximum);
        return false;
    }
    return true;
}

}  // namespace zelko::cli
