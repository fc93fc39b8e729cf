#include "app/pane/perch_file_pane_controller.hpp"
#include "app/status/status_banner.hpp"
#include "desktop/fake_folder_chooser.hpp"
#include "support/started_shell.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>
#include <QSettings>

#include <filesystem>

namespace perchftp::test {
namespace {

QString const kTemplate = QStringLiteral(
    "What happened?\n\nSteps to reproduce:\n1. \n2. \n\nExpected result:\nActual result:\n");

class HelpWorkflows : public StartedShellTest {
protected:
    void SetUp() override { startShell(); }

    QString bannerText() { return controller().statusLabel()->text(); }
    bool bannerIsError() { return controller().statusBanner()->showsError(); }
    std::string logPath() const { return (folders().baseFolder() + "/bug-reports.log").toStdString(); }

    ScriptedShellDialogs::Question const& lastQuestion() { return dialogs().questions().back(); }
};

// The record as written, with its first line (the time) checked for its form and cut away.
std::string withoutTimestamps(std::string const& log)
{
    static QRegularExpression const stamp(QStringLiteral(R"(^\[\d{4}-\d\d-\d\d \d\d:\d\d:\d\d [+-]\d{4}\]$)"),
        QRegularExpression::MultilineOption);
    QString text = QString::fromStdString(log);
    text.replace(stamp, QStringLiteral("[time]"));
    return text.toStdString();
}

TEST_F(HelpWorkflows, TwoReportsInARowAppendTwoRecordsWithoutConnectionOrSecrets)
{
    controller().hostField()->setText(QStringLiteral(" Files.Example.ORG "));
    controller().userField()->setText(QStringLiteral("ann"));
    controller().secretField()->setText(QStringLiteral("hunter2"));
    QString const local = controller().localPane()->pathValue();

    dialogs().expectText(QStringLiteral("\n  The list froze.\n\n"));
    controller().reportBug();
    dialogs().expectText(kTemplate);
    controller().reportBug();

    ASSERT_EQ(dialogs().questions().size(), 2u);
    EXPECT_EQ(dialogs().questions().front().kind, QStringLiteral("bugReport"));
    EXPECT_EQ(dialogs().questions().front().text, kTemplate) << "the editor starts with the template";

    std::string const head = "[time]\nHost:  Files.Example.ORG \nProtocol: " +
                             controller().protocolField()->currentText().toStdString() +
                             "\nConnected: no\nLocal Path: " + local.toStdString() + "\nRemote Path: " +
                             controller().remotePane()->pathValue().toStdString() + "\nReport:\n";
    EXPECT_EQ(withoutTimestamps(readFile(logPath())),
              head + "The list froze.\n\n---\n\n" + head + kTemplate.trimmed().toStdString() + "\n\n---\n\n");
    EXPECT_EQ(readFile(logPath()).find("hunter2"), std::string::npos);
    EXPECT_EQ(bannerText(), QStringLiteral("✅ Bug report saved to ") + QString::fromStdString(logPath()));
    EXPECT_FALSE(bannerIsError());
}

TEST_F(HelpWorkflows, ACancelledOrEmptyReportWritesNothing)
{
    dialogs().expectText(std::nullopt);
    controller().reportBug();
    EXPECT_EQ(bannerText(), QStringLiteral("✅ Bug report canceled."));
    EXPECT_FALSE(bannerIsError());

    dialogs().expectText(QStringLiteral(" \n\t \n"));
    controller().reportBug();
    EXPECT_EQ(bannerText(), QStringLiteral("⚠️ Bug report not saved because the message was empty."));
    EXPECT_TRUE(bannerIsError());
    EXPECT_FALSE(std::filesystem::exists(logPath()));
}

TEST_F(HelpWorkflows, AReportThatCannotBeWrittenSaysSoAndKeepsTheFileInTheWay)
{
    std::filesystem::remove_all(folders().baseFolder().toStdString());
    writeFile(folders().baseFolder().toStdString(), "a file where the base folder belongs");

    dialogs().expectText(QStringLiteral("lost?"));
    controller().reportBug();
    EXPECT_EQ(bannerText(), QStringLiteral("⚠️ Bug report could not be saved to disk."));
    EXPECT_EQ(readFile(folders().baseFolder().toStdString()), "a file where the base folder belongs");
}

TEST_F(HelpWorkflows, TheAboutPanelShowsTheVersionAndOnlyCloses)
{
    dialogs().expectAlertButton(1000);
    controller().showAboutPanel();
    ASSERT_EQ(dialogs().questions().size(), 1u);
    EXPECT_EQ(lastQuestion().kind, QStringLiteral("alert"));
    EXPECT_EQ(lastQuestion().title, QStringLiteral("About PerchFtp"));
    EXPECT_EQ(lastQuestion().text,
              QStringLiteral("Version 0.1.0\nPerchFtp is a desktop FTP client for local and remote file management."));
    EXPECT_EQ(lastQuestion().options, QStringList{QStringLiteral("Close")});
}

class FolderPicker : public HelpWorkflows {
protected:
    void SetUp() override
    {
        HelpWorkflows::SetUp();
        chooser.install("zenity");
    }

    FakeFolderChooser chooser;
    TempDir places;
};

TEST_F(FolderPicker, AChosenFolderOpensInTheLocalPaneAndIsRemembered)
{
    std::filesystem::create_directories(places.path() / "Music");
    QString const music = QString::fromStdString((places.path() / "Music").string());
    chooser.answer((music + "/\n").toUtf8(), "(zenity:1): Gtk-WARNING **: 10:00:00.000: theme noise");

    controller().openLocalFolder();

    EXPECT_EQ(controller().localPane()->pathValue(), music);
    EXPECT_EQ(bannerText(), QStringLiteral("✅ Opened local folder: ") + music);
    EXPECT_EQ(QSettings(QStringLiteral("PerchFtp"), QStringLiteral("PerchFtp"))
                  .value(QStringLiteral("PerchFtpLastLocalPanePath"))
                  .toString(),
              music);
    EXPECT_TRUE(dialogs().questions().empty()) << "no alert on success";
}

TEST_F(FolderPicker, TheStartFolderReachesTheChooserIntact)
{
    auto const odd = places.path() / R"(say "hi" \ back\slash)";
    std::filesystem::create_directories(odd);
    controller().localPane()->loadLocalDirectory(QString::fromStdString(odd.string()));
    chooser.answer({}, {}, 1);

    controller().openLocalFolder();

    ASSERT_TRUE(chooser.wasRun());
    QStringList const arguments = chooser.arguments();
    ASSERT_FALSE(arguments.isEmpty());
    EXPECT_EQ(arguments.back(), QString::fromStdString(odd.string()) + "/");
    EXPECT_TRUE(arguments.contains(QStringLiteral("Select a local folder")));
}

TEST_F(FolderPicker, TheToolsCancelIsACancelWithoutAnAlert)
{
    chooser.answer({}, "(zenity:7): Gtk-Message: 10:00:00.000: GtkDialog mapped without a transient parent.", 1);
    QString const before = controller().localPane()->pathValue();

    controller().openLocalFolder();

    EXPECT_EQ(bannerText(), QStringLiteral("✅ Folder selection canceled."));
    EXPECT_TRUE(dialogs().questions().empty());
    EXPECT_EQ(controller().localPane()->pathValue(), before);
}

TEST_F(FolderPicker, APermissionComplaintWinsOverACancel)
{
    chooser.answer({}, "Operation not permitted; user canceled", 1);
    dialogs().expectAlertButton(1000);

    controller().openLocalFolder();

    ASSERT_EQ(dialogs().questions().size(), 1u);
    EXPECT_EQ(lastQuestion().title, QStringLiteral("Folder access permission required"));
    EXPECT_EQ(lastQuestion().text, QStringLiteral("The desktop blocked folder access or automation for the folder "
                                                  "chooser. Check Privacy & Security settings and try again."));
    EXPECT_EQ(bannerText(), QStringLiteral("⚠️ The desktop blocked folder chooser access."));
}

TEST_F(FolderPicker, AFailureShowsTheChoosersOwnWordsOrAPlainOne)
{
    chooser.answer({}, "(zenity:9): Gtk-WARNING **: 10:00:00.000: cannot open display: :99", 1);
    dialogs().expectAlertButton(1000);
    controller().openLocalFolder();
    ASSERT_EQ(dialogs().questions().size(), 1u);
    EXPECT_EQ(lastQuestion().title, QStringLiteral("Folder chooser failed"));
    EXPECT_TRUE(lastQuestion().text.contains(QStringLiteral("cannot open display")));
    EXPECT_EQ(bannerText(), QStringLiteral("⚠️ Folder chooser failed."));

    chooser.answer({}, {}, 5);
    dialogs().expectAlertButton(1000);
    controller().openLocalFolder();
    EXPECT_EQ(lastQuestion().text, QStringLiteral("The desktop folder chooser did not return a folder."));

    chooser.answer({}, {}, 0);
    chooser.crashWith("KILL");
    dialogs().expectAlertButton(1000);
    controller().openLocalFolder();
    EXPECT_EQ(lastQuestion().text, QStringLiteral("The folder chooser stopped unexpectedly."));
    EXPECT_EQ(dialogs().questions().size(), 3u);
}

TEST_F(FolderPicker, AChooserThatCannotStartIsToldApart)
{
    chooser.installBroken("zenity");
    dialogs().expectAlertButton(1000);

    controller().openLocalFolder();

    ASSERT_EQ(dialogs().questions().size(), 1u);
    EXPECT_EQ(lastQuestion().title, QStringLiteral("Unable to open folder picker"));
    EXPECT_EQ(lastQuestion().text, QStringLiteral("PerchFtp could not start the desktop folder chooser. Please check "
                                                  "system permissions and try again."));
    EXPECT_EQ(bannerText(), QStringLiteral("⚠️ Unable to open local folder picker."));
}

TEST_F(FolderPicker, ThePanesOwnRouteAsksTheChooserFirstAndFallsBackToTheDialog)
{
    std::filesystem::create_directories(places.path() / "Films");
    QString const films = QString::fromStdString((places.path() / "Films").string());
    chooser.answer((films + "\n").toUtf8());
    controller().localPane()->openFolder();
    EXPECT_EQ(controller().localPane()->pathValue(), films);
    EXPECT_TRUE(dialogs().questions().empty()) << "the chooser answered, so no dialog";

    std::filesystem::create_directories(places.path() / "Books");
    QString const books = QString::fromStdString((places.path() / "Books").string());
    chooser.answer({}, {}, 1);
    dialogs().expectFolder(books);
    controller().localPane()->openFolder();
    EXPECT_EQ(controller().localPane()->pathValue(), books) << "a cancel in the chooser asks again in-process";
    ASSERT_EQ(dialogs().questions().size(), 1u);
    EXPECT_EQ(lastQuestion().kind, QStringLiteral("folder"));
}

} // namespace
} // namespace perchftp::test
