// Failure, the one exception of the program: a file and the cause, which main() prints as one line. Results
// of the library become failures through Check(), with the library's own message.
#pragma once

#include "zkr13n/codes.h"

#include <stdexcept>
#include <string>

namespace zkr::app {

class Failure : public std::runtime_error {
  public:
    Failure(const std::string& file, const std::string& cause) : std::runtime_error(file + ": " + cause) {}
};

// A fault of the command line: what is wrong with it, without a file.
class UsageFailure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

inline std::string MessageOf(ReturnCode code) {
    const char* text = Z_GetErrorText(code);
    return text != nullptr ? text : "result " + std::to_string(code) + " of the library";
}

// Row functions give a count of bytes and most others 1, so whatever is above 0 is success.
inline void Check(ReturnCode result, const std::string& file) {
    if (result < 1) throw Failure(file, MessageOf(result));
}

} // namespace zkr::app
