#include "app/shell_paths.hpp"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

namespace perchftp::app {

QString shellBaseFolder()
{
    QString const data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    QString const root = data.isEmpty() ? QDir::tempPath() : data;
    return QDir(root).filePath(QStringLiteral("PerchFtp"));
}

void makePrivateFolder(QString const& path)
{
    if (QDir().mkpath(path)) {
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
}

} // namespace perchftp::app
