#include "app/transfers/local_file_operations.hpp"

#include "app/transfers/transfer_paths.hpp"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include <fcntl.h>

namespace perchftp::app::detail {

namespace fs = std::filesystem;

namespace {

QString describe(std::error_code const& ec)
{
    if (!ec) {
        return QString();
    }
    std::string const message = ec.message();
    return message.empty() ? QStringLiteral("unknown error") : QString::fromLocal8Bit(message.c_str());
}

} // namespace

QString createLocalFolder(QString const& path)
{
    std::error_code ec;
    if (!fs::create_directory(pathBytes(path), ec) && !ec) {
        ec = std::make_error_code(std::errc::file_exists);
    }
    return describe(ec);
}

QString moveLocalItem(QString const& from, QString const& to)
{
    std::string const source = pathBytes(from);
    std::string const target = pathBytes(to);
    if (::renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0) {
        return QString();
    }
    std::error_code ec(errno, std::generic_category());
    // Some file systems can't promise "no replace"; there the check comes first.
    if (ec == std::errc::invalid_argument || ec == std::errc::function_not_supported) {
        std::error_code probe;
        if (fs::exists(fs::symlink_status(target, probe))) {
            return describe(std::make_error_code(std::errc::file_exists));
        }
        ec.clear();
        fs::rename(source, target, ec);
    }
    return describe(ec);
}

QString removeLocalItem(QString const& path)
{
    std::string const bytes = pathBytes(path);
    std::error_code ec;
    if (!fs::exists(fs::symlink_status(bytes, ec))) {
        return describe(ec ? ec : std::make_error_code(std::errc::no_such_file_or_directory));
    }
    fs::remove_all(bytes, ec);
    return describe(ec);
}

} // namespace perchftp::app::detail
