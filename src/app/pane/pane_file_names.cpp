#include "app/pane/pane_file_names.hpp"

namespace perchftp::app::detail {

namespace {

constexpr char16_t kEscapeBase = 0xDC00;

bool isEscapedByte(char16_t unit)
{
    return unit >= 0xDC80 && unit <= 0xDCFF;
}

bool isContinuation(unsigned char byte)
{
    return (byte & 0xC0) == 0x80;
}

// The code point of a valid UTF-8 sequence at `at`, and its length; length 0 when invalid.
char32_t decodeOne(std::string const& bytes, std::size_t at, std::size_t& length)
{
    auto const lead = static_cast<unsigned char>(bytes[at]);
    length = 0;
    std::size_t count = 0;
    char32_t point = 0;
    char32_t minimum = 0;
    if (lead < 0x80) {
        length = 1;
        return lead;
    }
    if ((lead & 0xE0) == 0xC0) {
        count = 2, point = lead & 0x1F, minimum = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
        count = 3, point = lead & 0x0F, minimum = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
        count = 4, point = lead & 0x07, minimum = 0x10000;
    } else {
        return 0;
    }
    if (at + count > bytes.size()) {
        return 0;
    }
    for (std::size_t index = 1; index < count; ++index) {
        auto const next = static_cast<unsigned char>(bytes[at + index]);
        if (!isContinuation(next)) {
            return 0;
        }
        point = (point << 6) | (next & 0x3F);
    }
    bool const surrogate = point >= 0xD800 && point <= 0xDFFF;
    if (point < minimum || point > 0x10FFFF || surrogate) {
        return 0;
    }
    length = count;
    return point;
}

} // namespace

QString decodeFileName(std::string const& bytes)
{
    QString name;
    name.reserve(qsizetype(bytes.size()));
    for (std::size_t at = 0; at < bytes.size();) {
        std::size_t length = 0;
        char32_t const point = decodeOne(bytes, at, length);
        if (length == 0) {
            name.append(QChar(char16_t(kEscapeBase + static_cast<unsigned char>(bytes[at]))));
            ++at;
            continue;
        }
        char32_t const points[] = {point};
        name.append(QString::fromUcs4(points, 1));
        at += length;
    }
    return name;
}

std::string encodeFileName(QString const& name)
{
    std::string bytes;
    bytes.reserve(std::size_t(name.size()));
    qsizetype runStart = 0;
    auto const flushRun = [&](qsizetype end) {
        if (end > runStart) {
            bytes += name.mid(runStart, end - runStart).toStdString();
        }
    };
    for (qsizetype index = 0; index < name.size(); ++index) {
        char16_t const unit = name.at(index).unicode();
        if (isEscapedByte(unit)) {
            flushRun(index);
            bytes.push_back(static_cast<char>(unit - kEscapeBase));
            runStart = index + 1;
        }
    }
    flushRun(name.size());
    return bytes;
}

QString displayFileName(QString const& name)
{
    QString shown = name;
    for (QChar& character : shown) {
        if (isEscapedByte(character.unicode())) {
            character = QChar::ReplacementCharacter;
        }
    }
    return shown;
}

} // namespace perchftp::app::detail
