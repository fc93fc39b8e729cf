#pragma once

#include "app/shell_dialogs.hpp"

#include <QString>
#include <QStringList>

#include <deque>
#include <memory>
#include <optional>
#include <variant>

namespace perchftp::test {

// Answers the shell's modal questions from a script, in order, and records every question.
// A question that the script does not expect fails the test and gets the cancelling answer.
class ScriptedShellDialogs final : public app::ShellDialogs {
public:
    struct Question {
        QString kind; // "folder", "alert", "text", "savedConnection", "bugReport", "licence"
        QString title;
        QString text;
        QStringList options;
    };

    // The text typed into a prompt, or no text when the prompt was cancelled.
    struct TextAnswer {
        bool given = false;
        QString text;
    };

    // An alert with a check box: the button pressed and the state the box was left in.
    struct CheckBoxAlertAnswer {
        int button = app::kFirstAlertButton;
        bool checked = false;
    };

    using Answer = std::variant<QString, int, TextAnswer, app::SavedConnectionAnswer, bool, CheckBoxAlertAnswer>;

    void expectFolder(QString folder) { answers_.push_back(std::move(folder)); }
    void expectAlertButton(int result) { answers_.push_back(result); }
    void expectText(std::optional<QString> text) { answers_.push_back(TextAnswer{text.has_value(), text.value_or(QString())}); }
    void expectSavedConnection(app::SavedConnectionAnswer answer) { answers_.push_back(answer); }
    void expectLicence(bool accepted) { answers_.push_back(accepted); }
    // Transfers: the question's kind is "checkBoxAlert", its options the buttons and then the box's title.
    void expectCheckBoxAlert(int button, bool checked) { answers_.push_back(CheckBoxAlertAnswer{button, checked}); }

    std::deque<Question> const& questions() const { return questions_; }
    // An object that hands every question to this script, for code that takes the dialogs over
    // and may destroy them before the test looks at what was asked.
    std::unique_ptr<app::ShellDialogs> borrowed();
    bool scriptIsUsedUp() const { return answers_.empty(); }

    QString chooseExistingFolder(QWidget*, QString const& title, QString const& startFolder) override;
    int runAlert(QWidget*, app::AlertRequest const& request) override;
    std::optional<QString> askForText(QWidget*, QString const& title, QString const& message, QString const& value,
        QString const& placeholder, QIcon const&) override;
    app::SavedConnectionAnswer chooseSavedConnection(
        QWidget*, std::vector<app::SavedConnectionItem> const& items, QIcon const&) override;
    std::optional<QString> editBugReport(QWidget*, QString const& templateText, QIcon const&) override;
    bool acceptLicence(QString const& licenceText, QIcon const&) override;
    int runAlertWithCheckBox(QWidget*, app::AlertRequest const& request, QString const& checkBoxTitle,
        bool& checked) override;

private:
    template <typename T>
    std::optional<T> next(Question question);

    std::deque<Answer> answers_;
    std::deque<Question> questions_;
};

} // namespace perchftp::test
