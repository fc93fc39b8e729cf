#include "isolated_user_folders.hpp"

#include "app/licence_gate.hpp"

#include <QDir>
#include <QSettings>

#include <cstdlib>
#include <unistd.h>

namespace perchftp::test {

IsolatedUserFolders::IsolatedUserFolders()
{
    for (char const* folder : {"home", "data", "config", "work"}) {
        QDir().mkpath(path(folder));
    }
    setVariable("HOME", home());
    setVariable("XDG_DATA_HOME", dataHome());
    setVariable("XDG_CONFIG_HOME", configHome());
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, configHome());
    previousWorkingDirectory_ = QDir::currentPath().toLocal8Bit();
    QDir::setCurrent(workingDirectory());
}

IsolatedUserFolders::~IsolatedUserFolders()
{
    QDir::setCurrent(QString::fromLocal8Bit(previousWorkingDirectory_));
    for (auto const& [name, value] : previous_) {
        if (value) {
            ::setenv(name.c_str(), value->constData(), 1);
        } else {
            ::unsetenv(name.c_str());
        }
    }
}

void IsolatedUserFolders::acceptLicence() const
{
    QSettings(QStringLiteral("PerchFtp"), QStringLiteral("PerchFtp")).setValue(QString::fromLatin1(app::kLicenceAcceptedKey), true);
}

QString IsolatedUserFolders::path(char const* name) const
{
    return root_.path() + u'/' + QString::fromLatin1(name);
}

void IsolatedUserFolders::setVariable(char const* name, QString const& value)
{
    if (!previous_.count(name)) {
        char const* old = std::getenv(name);
        previous_[name] = old ? std::optional<QByteArray>(QByteArray(old)) : std::nullopt;
    }
    ::setenv(name, value.toLocal8Bit().constData(), 1);
}

} // namespace perchftp::test
