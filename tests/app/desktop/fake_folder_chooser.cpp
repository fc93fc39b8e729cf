#include "desktop/fake_folder_chooser.hpp"

#include <QString>
#include <QtGlobal>

#include <filesystem>

namespace perchftp::test {
FakeFolderChooser::FakeFolderChooser()
    : savedPath_(qgetenv("PATH"))
{
    std::filesystem::create_directories(bin());
    qputenv("PATH", QByteArray::fromStdString(bin().string()));
    qputenv("FAKE_CHOOSER_ARGS", QByteArray::fromStdString(dir_.file("args")));
}

FakeFolderChooser::~FakeFolderChooser()
{
    qputenv("PATH", savedPath_);
}

void FakeFolderChooser::install(std::string const& program)
{
    auto const path = bin() / program;
    writeFile(path, "#!/bin/sh\n"
                    "for a in \"$@\"; do printf '%s\\n' \"$a\"; done > \"$FAKE_CHOOSER_ARGS\"\n"
                    "printf '%s' \"$FAKE_CHOOSER_OUT\"\n"
                    "printf '%s' \"$FAKE_CHOOSER_ERR\" >&2\n"
                    "[ -n \"$FAKE_CHOOSER_SIGNAL\" ] && kill -\"$FAKE_CHOOSER_SIGNAL\" $$\n"
                    "exit \"${FAKE_CHOOSER_EXIT:-0}\"\n");
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
}

void FakeFolderChooser::installBroken(std::string const& program)
{
    auto const path = bin() / program;
    writeFile(path, std::string("\x7f" "ELF garbage", 12));
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
}

void FakeFolderChooser::answer(QByteArray const& output, QByteArray const& error, int exitStatus, char const* signal)
{
    qputenv("FAKE_CHOOSER_OUT", output);
    qputenv("FAKE_CHOOSER_ERR", error);
    qputenv("FAKE_CHOOSER_EXIT", QByteArray::number(exitStatus));
    qputenv("FAKE_CHOOSER_SIGNAL", signal ? signal : "");
}

QStringList FakeFolderChooser::arguments() const
{
    return QString::fromStdString(readFile(dir_.file("args"))).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

} // namespace perchftp::test
