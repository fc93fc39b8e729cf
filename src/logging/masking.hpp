#pragma once

#include <string>

namespace perchftp::logging::detail {

// Replaces the value after "password=", "pass=", "secret=" or "token=" (any ASCII case) with "*"s.
// Every search starts again at the beginning of the text, so the first token found is found
// forever: a text holding a token never comes back. That is the logger's settled behaviour.
std::string maskSensitive(std::string const& text);

} // namespace perchftp::logging::detail
