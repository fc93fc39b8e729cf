#include "app/shell_text.hpp"

#include "app/pane/pane_cells.hpp"

#include <QStringDecoder>

#include <algorithm>
#include <cctype>
#include <climits>

namespace perchftp::app::detail {

std::string qtToCpp(QString const& text)
{
    QByteArray const bytes = text.toUtf8();
    return std::string(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

std::string trim(std::string const& text)
{
    auto const isSpace = [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; };
    std::size_t begin = 0;
    std::size_t end = text.size();
    while (begin < end && isSpace(text[begin])) {
        ++begin;
    }
    while (end > begin && isSpace(text[end - 1])) {
        --end;
    }
    return text.substr(begin, end - begin);
}

std::string lowerAscii(std::string text)
{
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return text;
}

int defaultPortForProtocol(std::string const& protocol)
{
    return protocol == "sftp" ? 22 : 21;
}

int leadingIntValue(QString const& text)
{
    return static_cast<int>(std::clamp<qint64>(leadingInt64(text), INT_MIN, INT_MAX));
}

bool isValidUtf8(std::string const& bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    [[maybe_unused]] QString const decoded = decoder.decode(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
    return !decoder.hasError();
}

QString fromUtf8Or(std::string const& bytes, QString const& replacement)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString decoded = decoder.decode(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
    return decoder.hasError() ? replacement : decoded;
}

} // namespace perchftp::app::detail
