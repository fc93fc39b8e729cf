#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

#include <map>
#include <optional>
#include <string>

namespace perchftp::test {

// Gives one test its own home, data, config and working folders, and puts back what was there
// before when it ends. QSettings is pointed at the new config folder as well.
class IsolatedUserFolders {
public:
    IsolatedUserFolders();
    ~IsolatedUserFolders();
    IsolatedUserFolders(IsolatedUserFolders const&) = delete;
    IsolatedUserFolders& operator=(IsolatedUserFolders const&) = delete;

    QString home() const { return path("home"); }
    QString dataHome() const { return path("data"); }
    QString configHome() const { return path("config"); }
    QString workingDirectory() const { return path("work"); }
    // Where the shell keeps its files under this data folder.
    QString baseFolder() const { return path("data/PerchFtp"); }

    // As if the licence had been accepted on an earlier start.
    void acceptLicence() const;

private:
    QString path(char const* name) const;
    void setVariable(char const* name, QString const& value);

    QTemporaryDir root_;
    std::map<std::string, std::optional<QByteArray>> previous_;
    QByteArray previousWorkingDirectory_;
};

} // namespace perchftp::test
