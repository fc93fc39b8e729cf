#pragma once

#include "app/licence_gate.hpp"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QSettings>
#include <QString>
#include <QTemporaryDir>

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

namespace perchftp::test {

// Gives one test, or a whole test program, its own home, data, config, cache, runtime and working
// folders, and puts back what was there before when it ends. QSettings is pointed at the new
// config folder as well.
class IsolatedUserFolders {
public:
    IsolatedUserFolders()
    {
        for (auto const& [variable, folder] : {std::pair{"HOME", "home"}, {"XDG_DATA_HOME", "data"},
                 {"XDG_CONFIG_HOME", "config"}, {"XDG_CACHE_HOME", "cache"},
                 {"XDG_RUNTIME_DIR", "runtime"}}) {
            QDir().mkpath(path(folder));
            char const* old = std::getenv(variable);
            previous_[variable] = old ? std::optional<QByteArray>(QByteArray(old)) : std::nullopt;
            ::setenv(variable, path(folder).toLocal8Bit().constData(), 1);
        }
        QFile::setPermissions(
            path("runtime"), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, path("config"));
        QDir().mkpath(workingDirectory());
        QDir::setCurrent(workingDirectory());
    }
    ~IsolatedUserFolders()
    {
        QDir::setCurrent(previousWorkingDirectory_);
        for (auto const& [name, value] : previous_) {
            value ? ::setenv(name.c_str(), value->constData(), 1) : ::unsetenv(name.c_str());
        }
    }
    IsolatedUserFolders(IsolatedUserFolders const&) = delete;
    IsolatedUserFolders& operator=(IsolatedUserFolders const&) = delete;

    QString home() const { return path("home"); }
    QString workingDirectory() const { return path("work"); }
    // Where the shell keeps its files under this data folder.
    QString baseFolder() const { return path("data/PerchFtp"); }

    // As if the licence had been accepted on an earlier start.
    void acceptLicence() const
    {
        QSettings(QStringLiteral("PerchFtp"), QStringLiteral("PerchFtp")).setValue(QString::fromLatin1(app::kLicenceAcceptedKey), true);
    }

private:
    QString path(char const* name) const { return root_.path() + u'/' + QString::fromLatin1(name); }

    QTemporaryDir root_;
    std::map<std::string, std::optional<QByteArray>> previous_;
    QString previousWorkingDirectory_ = QDir::currentPath();
};

} // namespace perchftp::test
