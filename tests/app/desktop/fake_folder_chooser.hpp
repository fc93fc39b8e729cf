#pragma once

#include "support/temp_dir.hpp"

#include <QByteArray>
#include <QStringList>

#include <string>

namespace perchftp::test {

// Stands in for the desktop's folder chooser: while it lives, PATH holds only its own folder, in
// which `install("zenity")` or `install("kdialog")` puts a script that records its arguments and
// answers with the output, error text, exit status or signal the test sets.
class FakeFolderChooser {
public:
    FakeFolderChooser();
    ~FakeFolderChooser();
    FakeFolderChooser(FakeFolderChooser const&) = delete;
    FakeFolderChooser& operator=(FakeFolderChooser const&) = delete;

    void install(std::string const& program);
    // Something that is not a program at all, so that starting it fails.
    void installBroken(std::string const& program);

    // Every answer replaces the whole previous one; `signal` (e.g. "KILL") ends the script with it.
    void answer(QByteArray const& output, QByteArray const& error = {}, int exitStatus = 0, char const* signal = nullptr);

    // The arguments of the last run, one a line; none before the first.
    QStringList arguments() const;

private:
    std::filesystem::path bin() const { return dir_.path() / "bin"; }

    TempDir dir_;
    QByteArray savedPath_;
};

} // namespace perchftp::test
