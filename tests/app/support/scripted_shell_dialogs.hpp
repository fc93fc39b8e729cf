#pragma once

#include "app/saved_connection_items.hpp"
#include "app/shell_dialogs.hpp"

#include <gtest/gtest.h>

#include <QString>
#include <QStringList>

#include <deque>
#include <memory>
#include <optional>
#include <utility>
#include <variant>

namespace perchftp::test {

// Answers the shell's modal questions from a script, in order, and records every question.
// A question that the script does not expect fails the test and gets the cancelling answer.
// Copies share one script, so a test can hand a copy to code that may destroy it and still
// look at what was asked.
class ScriptedShellDialogs final : public app::ShellDialogs {
public:
    struct Question {
        QString kind; // "folder", "alert", "text", "savedConnection", "bugReport", "licence", "checkBoxAlert"
        QString title;
        QString text;
        QStringList options; // for "checkBoxAlert": the buttons, then the box's title
    };

    // The text typed into a prompt, or no text when the prompt was cancelled.
    struct TextAnswer {
        bool given = false;
        QString text;
    };

    // An alert with a check box is answered with the button pressed and the state the box was left in.
    using Answer =
        std::variant<QString, int, TextAnswer, app::SavedConnectionAnswer, bool, std::pair<int, bool>>;

    void expectFolder(QString folder) { script_->answers.push_back(std::move(folder)); }
    void expectAlertButton(int result) { script_->answers.push_back(result); }
    void expectText(std::optional<QString> text)
    {
        script_->answers.push_back(TextAnswer{text.has_value(), text.value_or(QString())});
    }
    void expectSavedConnection(app::SavedConnectionAnswer answer) { script_->answers.push_back(answer); }
    void expectLicence(bool accepted) { script_->answers.push_back(accepted); }
    void expectCheckBoxAlert(int button, bool checked)
    {
        script_->answers.push_back(std::pair(button, checked));
    }

    std::deque<Question> const& questions() const { return script_->questions; }
    bool scriptIsUsedUp() const { return script_->answers.empty(); }

    QString chooseExistingFolder(QWidget*, QString const& title, QString const& startFolder) override
    {
        return next<QString>({QStringLiteral("folder"), title, startFolder, {}}).value_or(QString());
    }
    int runAlert(QWidget*, app::AlertRequest const& request) override
    {
        return next<int>({QStringLiteral("alert"), request.messageText, request.informativeText, request.buttons})
            .value_or(ShellDialogs::runAlert(nullptr, request));
    }
    std::optional<QString> askForText(QWidget*, QString const& title, QString const& message, QString const& value,
        QString const& placeholder, QIcon const&) override
    {
        return given(next<TextAnswer>({QStringLiteral("text"), title, message, {value, placeholder}}));
    }
    app::SavedConnectionAnswer chooseSavedConnection(
        QWidget*, std::vector<app::SavedConnectionItem> const& items, QIcon const&) override
    {
        Question question{QStringLiteral("savedConnection"), {}, {}, app::savedConnectionRowTexts(items)};
        return next<app::SavedConnectionAnswer>(std::move(question)).value_or(app::SavedConnectionAnswer{});
    }
    std::optional<QString> editBugReport(QWidget*, QString const& templateText, QIcon const&) override
    {
        return given(next<TextAnswer>({QStringLiteral("bugReport"), {}, templateText, {}}));
    }
    bool acceptLicence(QString const& licenceText, QIcon const&) override
    {
        return next<bool>({QStringLiteral("licence"), {}, licenceText, {}}).value_or(false);
    }
    int runAlertWithCheckBox(QWidget*, app::AlertRequest const& request, QString const& checkBoxTitle,
        bool& checked) override
    {
        auto const answer = next<std::pair<int, bool>>({QStringLiteral("checkBoxAlert"), request.messageText,
            request.informativeText, request.buttons + QStringList{checkBoxTitle}});
        if (!answer) {
            return ShellDialogs::runAlertWithCheckBox(nullptr, request, checkBoxTitle, checked);
        }
        checked = answer->second;
        return answer->first;
    }

private:
    struct Script {
        std::deque<Answer> answers;
        std::deque<Question> questions;
    };

    template <typename T>
    std::optional<T> next(Question question)
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
    static std::optional<QString> given(std::optional<TextAnswer> const& answer)
    {
        return answer && answer->given ? std::optional<QString>(answer->text) : std::nullopt;
    }

    std::shared_ptr<Script> script_ = std::make_shared<Script>();
};

} // namespace perchftp::test
