#include "scripted_shell_dialogs.hpp"

#include <gtest/gtest.h>

namespace perchftp::test {

template <typename T>
std::optional<T> ScriptedShellDialogs::next(Question question)
{
    script_->questions.push_back(question);
    auto& answers = script_->answers;
    if (answers.empty() || !std::holds_alternative<T>(answers.front())) {
        ADD_FAILURE() << "unexpected " << question.kind.toStdString() << " question: " << question.title.toStdString();
        return std::nullopt;
    }
    T answer = std::get<T>(answers.front());
    answers.pop_front();
    return answer;
}

QString ScriptedShellDialogs::chooseExistingFolder(QWidget*, QString const& title, QString const& startFolder)
{
    return next<QString>({QStringLiteral("folder"), title, startFolder, {}}).value_or(QString());
}

int ScriptedShellDialogs::runAlert(QWidget*, app::AlertRequest const& request)
{
    Question question{QStringLiteral("alert"), request.messageText, request.informativeText, request.buttons};
    return next<int>(std::move(question)).value_or(ShellDialogs::runAlert(nullptr, request));
}

std::optional<QString> ScriptedShellDialogs::askForText(QWidget*, QString const& title, QString const& message,
    QString const& value, QString const& placeholder, QIcon const&)
{
    auto const answer = next<TextAnswer>({QStringLiteral("text"), title, message, {value, placeholder}});
    return answer && answer->given ? std::optional<QString>(answer->text) : std::nullopt;
}

app::SavedConnectionAnswer ScriptedShellDialogs::chooseSavedConnection(
    QWidget*, std::vector<app::SavedConnectionItem> const& items, QIcon const&)
{
    return next<app::SavedConnectionAnswer>({QStringLiteral("savedConnection"), {}, {}, app::savedConnectionRowTexts(items)})
        .value_or(app::SavedConnectionAnswer{});
}

std::optional<QString> ScriptedShellDialogs::editBugReport(QWidget*, QString const& templateText, QIcon const&)
{
    auto const answer = next<TextAnswer>({QStringLiteral("bugReport"), {}, templateText, {}});
    return answer && answer->given ? std::optional<QString>(answer->text) : std::nullopt;
}

bool ScriptedShellDialogs::acceptLicence(QString const& licenceText, QIcon const&)
{
    return next<bool>({QStringLiteral("licence"), {}, licenceText, {}}).value_or(false);
}

int ScriptedShellDialogs::runAlertWithCheckBox(QWidget*, app::AlertRequest const& request, QString const& checkBoxTitle,
    bool& checked)
{
    Question question{QStringLiteral("checkBoxAlert"), request.messageText, request.informativeText,
        request.buttons + QStringList{checkBoxTitle}};
    auto const answer = next<CheckBoxAlertAnswer>(std::move(question));
    if (!answer) {
        return ShellDialogs::runAlertWithCheckBox(nullptr, request, checkBoxTitle, checked);
    }
    checked = answer->checked;
    return answer->button;
}

} // namespace perchftp::test
