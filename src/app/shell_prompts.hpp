#pragma once

#include "app/shell_dialogs.hpp"

#include <QString>

#include <optional>

class QWidget;

namespace perchftp::app {

// Asks for one line of text with "OK" and "Cancel" under the application's icon; a null title
// reads "Input". The answer comes trimmed of blanks and line breaks. Nothing after "Cancel" and
// nothing after an answer that trims to nothing: the caller can't tell the two apart.
std::optional<QString> promptForText(ShellDialogs& dialogs, QWidget* window, QString const& title,
    QString const& message, QString const& value, QString const& placeholder);

} // namespace perchftp::app
