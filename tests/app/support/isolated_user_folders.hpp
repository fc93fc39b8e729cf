#pragma once

#include "app/licence_gate.hpp"

#include <QByteArray>
#include <QDir>
#include <QSettings>
#include <QString>
#include <QTemporaryDir>

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

namespace perchftp::test {

// Gives one test its own home, data, config and working folders, and puts back what was there
// before when it ends. QSettings is pointed at the new config folder as well.
class IsolatedUserFolders {
public:
    IsolatedUserFolders()
    {
        for (char const* folder : {"home", "data", "config", "work"}) {
            QDir().mkpath(path(folder));
        }
        setVariable("HOME", home());
        setVariable("XDG_DATA_HOME", dataHome());
        setVariable("XDG_CONFIG_HOME", configHome());
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, configHome());
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
    QString dataHome() const { return path("data"); }
    QString configHome() const { return path("config"); }
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
    void setVariable(char const* name, QString const& value)
    {
        char const* old = std::getenv(name);
        previous_[name] = old ? std::optional<QByteArray>(QByteArray(old)) : std::nullopt;
        ::setenv(name, value.toLocal8Bit().constData(), 1);
    }

    QTemporaryDir root_;
    std::map<std::string, std::optional<QByteArray>> previous_;
    QString previousWorkingDirectory_ = QDir::currentPath();
};

} // namespace perchftp::test
