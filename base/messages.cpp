#include "base/messages.h"

#include <array>
#include <cstdarg>

#include "base/textfile.h"

namespace zelko {

namespace {

struct MessageEntry {
    MessageCode code;
    std::string_view text;
};

// In the order of the codes (checked below).
constexpr MessageEntry kMessages[] = {
    {MessageCode::None, ""},
    // base: files
    {MessageCode::CannotCreateFolder, "cannot create the folder %s"},
    // models
    // cold
    // hot
    // material
};

constexpr bool inCodeOrder()
{
    for (std::size_t i = 0; i < std::size(kMessages); ++i)
        if (static_cast<std::size_t>(kMessages[i].code) != i)
            return false;
    return true;
}
static_assert(inCodeOrder(), "the message table must list the codes in order");

}  // namespace

std::string_view messageText(MessageCode code)
{
    const auto index = static_cast<std::size_t>(code);
    return index < std::size(kMessages) ? kMessages[index].text : std::string_view();
}

std::string formatMessage(MessageCode code, ...)
{
    const std::string format(messageText(code));
    va_list args;
    va_start(args, code);
    std::string text = formatTextV(format.c_str(), args);
    va_end(args);
    return text;
}

}  // namespace zelko
