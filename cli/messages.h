#pragma once
// What the tool tells its user. A failure is one line on standard error beginning
// "error: ", so scripts can show it as it stands.

#include <string>
#include <string_view>

namespace zelko::cli {

// Prints "error: MESSAGE" and gives the exit status 1.
int fail(std::string_view message);
void warn(std::string_view message);
// Writes the command's result to standard output; the exit status, 1 with an error
// line when it could not be written (a full disk).
int printResult(std::string_view text);

// "FILE: message", the form of every complaint about an input or output file.
std::string fileMessage(std::string_view path, std::string_view message);

}  // namespace zelko::cli
