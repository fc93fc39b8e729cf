#include "app/transfers/transfer_paths.hpp"

#include "app/pane/pane_file_names.hpp"

#include <cctype>

namespace perchftp::app::detail {

bool messageLooksLikeAlreadyExists(std::string const& message)
{
    std::string lowered = message;
    for (char& c : lowered) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return lowered.find("exist") != std::string::npos || lowered.find("file exists") != std::string::npos;
}

QString lastPathComponent(QString const& path)
{
    qsizetype end = path.size();
    while (end > 1 && path.at(end - 1) == u'/') {
        --end;
    }
    if (end == 1 && path.at(0) == u'/') {
        return QStringLiteral("/");
    }
    qsizetype const slash = path.lastIndexOf(u'/', end - 1);
    return path.mid(slash + 1, end - slash - 1);
}

std::string pathBytes(QString const& path)
{
    return encodeFileName(path);
}

QString pathText(std::string const& bytes)
{
    return decodeFileName(bytes);
}

QString messageText(std::string const& message)
{
    return QString::fromUtf8(message.data(), static_cast<qsizetype>(message.size()));
}

} // namespace perchftp::app::detail
