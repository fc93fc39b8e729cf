#pragma once

#include <QIcon>

namespace perchftp::app {

class ShellDialogs;

// Where the acceptance is kept, in QSettings("PerchFtp", "PerchFtp").
inline constexpr char const* kLicenceAcceptedKey = "LicenceAccepted";

// True when the licence was accepted on an earlier start or is accepted now; a new acceptance
// is kept, a refusal is not, so that the next start asks again.
bool passLicenceGate(ShellDialogs& dialogs, QIcon const& icon);

} // namespace perchftp::app
