#pragma once

namespace perchftp::core {

// The program's version, "0.1.0". Static storage, never null.
char const* version();

// Brings up the process-wide logger and the credential vault. Called once, by main.
void bootstrap();

} // namespace perchftp::core
