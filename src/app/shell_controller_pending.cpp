// Actions whose workflows come later. Each is wired to its controls already and, until its
// workflow lands, says so in the banner.
#include "app/shell_controller.hpp"

namespace perchftp::app {

void PerchFtpShellController::notAvailableYet(QString const& what)
{
    setStatusText(QStringLiteral("%1 is not available yet.").arg(what), false);
}

} // namespace perchftp::app
