#include "app/licence_gate.hpp"

#include "app/app_icons.hpp"
#include "app/shell_dialogs.hpp"

#include <QFile>
#include <QSettings>

namespace perchftp::app {

namespace {

QString licenceText()
{
    ensureShellResources();
    QFile file(QStringLiteral(":/perchftp/licence.txt"));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return QString::fromUtf8(file.readAll());
}

} // namespace

bool passLicenceGate(ShellDialogs& dialogs, QIcon const& icon)
{
    QSettings settings(QStringLiteral("PerchFtp"), QStringLiteral("PerchFtp"));
    if (settings.value(QString::fromLatin1(kLicenceAcceptedKey), false).toBool()) {
        return true;
    }
    if (!dialogs.acceptLicence(licenceText(), icon)) {
        return false;
    }
    settings.setValue(QString::fromLatin1(kLicenceAcceptedKey), true);
    return true;
}

} // namespace perchftp::app
