#pragma once

#include <QString>

#include <string>

// Local file names are bytes; most are UTF-8, some are not. A byte that is not part of valid UTF-8
// is kept in the text as the lone surrogate U+DC80 + byte, so that a path read from the disk can
// be handed back to it unchanged, and shown with U+FFFD in its place.
namespace perchftp::app::detail {

QString decodeFileName(std::string const& bytes);
std::string encodeFileName(QString const& name);
// The name as the user sees it: escaped bytes become U+FFFD.
QString displayFileName(QString const& name);

} // namespace perchftp::app::detail
