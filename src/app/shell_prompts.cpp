#include "app/shell_prompts.hpp"

#include "app/app_icons.hpp"

namespace perchftp::app {

namespace {

QString orEmpty(QString const& text)
{
    return text.isNull() ? QString(QLatin1String("")) : text;
}

} // namespace

std::optional<QString> promptForText(ShellDialogs& dialogs, QWidget* window, QString const& title,
    QString const& message, QString const& value, QString const& placeholder)
{
    std::optional<QString> const answer = dialogs.askForText(window,
        title.isNull() ? QStringLiteral("Input") : title, orEmpty(message), orEmpty(value), orEmpty(placeholder),
        appIconImage());
    if (!answer) {
        return std::nullopt;
    }
    QString trimmed = answer->trimmed();
    if (trimmed.isEmpty()) {
        return std::nullopt;
    }
    return trimmed;
}

} // namespace perchftp::app
