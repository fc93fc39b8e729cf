// The desktop's folder chooser as a child process and the verdict read from how it ended, and the
// Help menu's workflows (bug report, about panel) and the local folder picker through the real
// shell, with the chooser replaced by a script.
#include "app/desktop/bug_report_log.hpp"
#include "app/desktop/folder_chooser.hpp"
#include "app/desktop_shell.hpp"
#include "app/pane/perch_file_pane_controller.hpp"
#include "app/status/status_banner.hpp"
#include "support/started_shell.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

#include <QComboBox>
#include <QCoreApplication>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>
#include <QSettings>
#include <QTimeZone>

#include <filesystem>

namespace perchftp::test {
namespace {

using app::FolderChoice;

// Stands in for the desktop's folder chooser: while it lives, PATH holds only its own folder, in
// which `install("zenity")` or `install("kdialog")` puts a script that records its arguments and
// answers with the output, error text, exit status or signal the test sets.
class FakeFolderChooser {
public:
    FakeFolderChooser()
    {
        std::filesystem::create_directories(dir_.path() / "bin");
        qputenv("PATH", QByteArray::fromStdString((dir_.path() / "bin").string()));
        qputenv("FAKE_CHOOSER_ARGS", QByteArray::fromStdString(dir_.file("args")));
    }
    ~FakeFolderChooser() { qputenv("PATH", savedPath_); }
    FakeFolderChooser(FakeFolderChooser const&) = delete;
    FakeFolderChooser& operator=(FakeFolderChooser const&) = delete;

    void install(std::string const& program)
    {
        std::filesystem::path const path = dir_.path() / "bin" / program;
        writeFile(path, "#!/bin/sh\n"
                        "for a in \"$@\"; do printf '%s\\n' \"$a\"; done > \"$FAKE_CHOOSER_ARGS\"\n"
                        "printf '%s' \"$FAKE_CHOOSER_OUT\"\n"
                        "printf '%s' \"$FAKE_CHOOSER_ERR\" >&2\n"
                        "[ -n \"$FAKE_CHOOSER_SIGNAL\" ] && kill -\"$FAKE_CHOOSER_SIGNAL\" $$\n"
                        "exit \"${FAKE_CHOOSER_EXIT:-0}\"\n");
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    }
    // Every answer replaces the whole previous one; `signal` (e.g. "KILL") ends the script with it.
    void answer(QByteArray const& output, QByteArray const& error = {}, int exitStatus = 0, char const* signal = "")
    {
        qputenv("FAKE_CHOOSER_OUT", output);
        qputenv("FAKE_CHOOSER_ERR", error);
        qputenv("FAKE_CHOOSER_EXIT", QByteArray::number(exitStatus));
        qputenv("FAKE_CHOOSER_SIGNAL", signal);
    }
    // The arguments of the last run, one a line.
    QStringList arguments() const
    {
        return QString::fromStdString(readFile(dir_.file("args"))).split(u'\n', Qt::SkipEmptyParts);
    }

private:
    TempDir dir_;
    QByteArray savedPath_ = qgetenv("PATH");
};

app::FolderChooserRun ended(int status, QString out, QString err, bool crashed = false)
{
    return {true, {}, crashed, status, std::move(out), std::move(err)};
}

// What each verdict shows the user, and the verdicts of a denial beside a cancel, of a cancel
// under toolkit chatter, of a display error among it and of other statuses, are pinned by the
// picker's ladder below, and how a chosen path reads through chatter by the picker's choice.
TEST(FolderChooserVerdict, FollowsTheLadderInItsOrder)
{
    struct Case {
        char const* what;
        app::FolderChooserRun run;
        FolderChoice expected;
    } const cases[] = {
        {"a chosen folder beside a permission word", ended(0, "/srv/x\n", "permission"), FolderChoice::Opened},
        {"exit 0 without a path but a permission complaint", ended(0, "", "Not Permitted here"),
            FolderChoice::PermissionBlocked},
        {"exit 0 with nothing", ended(0, "  \n", ""), FolderChoice::Canceled},
        {"a cancel in the error text", ended(1, "", "execution error: User canceled. (-128)"), FolderChoice::Canceled},
        {"a crash, even after printing a path", ended(0, "/srv/x\n", "", true), FolderChoice::Failed},
    };
    for (auto const& c : cases) {
        EXPECT_EQ(app::judgeFolderChooserRun(c.run).choice, c.expected) << c.what;
    }
}

// Zenity's arguments, and a start folder that travels intact, are pinned by the folder picker.
TEST(FolderChooserProcess, KdialogServesWithoutZenityAndOutputThatIsNotUtf8IsTakenAsEmpty)
{
    FakeFolderChooser chooser;
    chooser.install("kdialog");
    chooser.answer(QByteArray("/bad\xff\xfe"), {}, 1);
    auto const run = app::FolderChooser::run(QStringLiteral("/srv/it's"), QStringLiteral("Pick"));
    ASSERT_TRUE(run.started);
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.standardOutput, QString());
    EXPECT_EQ(chooser.arguments(), (QStringList{"--title", "Pick", "--getexistingdirectory", "/srv/it's"}));
}

// The started shell with the desktop's folder chooser replaced, and a folder for the places a
// test picks.
class HelpWorkflows : public StartedShellTest {
protected:
    void SetUp() override { startShell(); }

    bool bannerIsError() { return controller().statusBanner()->showsError(); }
    std::string logPath() const { return (folders().baseFolder() + "/bug-reports.log").toStdString(); }
    ScriptedShellDialogs::Question const& lastQuestion() { return dialogs().questions().back(); }
    QString place(char const* name)
    {
        std::filesystem::create_directories(places.path() / name);
        return QString::fromStdString((places.path() / name).string());
    }

    FakeFolderChooser chooser;
    TempDir places;
};
using FolderPicker = HelpWorkflows;

// The log with the first line of each record (the time) checked for its form and cut away.
std::string withoutTimestamps(std::string const& log)
{
    static QRegularExpression const stamp(QStringLiteral(R"(^\[\d{4}-\d\d-\d\d \d\d:\d\d:\d\d [+-]\d{4}\]$)"),
        QRegularExpression::MultilineOption);
    return QString::fromStdString(log).replace(stamp, QStringLiteral("[time]")).toStdString();
}

TEST_F(HelpWorkflows, BugReportsAreAppendedWhenGivenWithTheFormsStateAndNeverItsSecret)
{
    // The time stamp carries the zone as signed digits; the log's own stamps are checked for their form.
    QDateTime const at(QDate(2026, 3, 7), QTime(9, 5, 3), QTimeZone(-(3 * 3600 + 30 * 60)));
    EXPECT_EQ(app::bugReportTimestamp(at), QStringLiteral("2026-03-07 09:05:03 -0330"));

    QString const kTemplate =
        QStringLiteral("What happened?\n\nSteps to reproduce:\n1. \n2. \n\nExpected result:\nActual result:\n");
    dialogs().expectText(std::nullopt);
    controller().reportBug();
    EXPECT_EQ(banner(), QStringLiteral("✅ Bug report canceled."));
    EXPECT_FALSE(bannerIsError());
    dialogs().expectText(QStringLiteral(" \n\t \n"));
    controller().reportBug();
    EXPECT_EQ(banner(), QStringLiteral("⚠️ Bug report not saved because the message was empty."));
    EXPECT_TRUE(bannerIsError());
    EXPECT_FALSE(std::filesystem::exists(logPath()));

    // Two reports in a row, without a connection; the second is the template as it came.
    controller().hostField()->setText(QStringLiteral(" Files.Example.ORG "));
    controller().secretField()->setText(QStringLiteral("hunter2"));
    dialogs().expectText(QStringLiteral("\n  The list froze ✓ at %1 100%\n\n"));
    controller().reportBug();
    dialogs().expectText(kTemplate);
    controller().reportBug();
    EXPECT_EQ(dialogs().questions().back().kind, QStringLiteral("bugReport"));
    EXPECT_EQ(dialogs().questions().back().text, kTemplate) << "the editor starts with the template";
    std::string const head = "[time]\nHost:  Files.Example.ORG \nProtocol: "
        + controller().protocolField()->currentText().toStdString() + "\nConnected: no\nLocal Path: "
        + controller().localPane()->pathValue().toStdString()
        + "\nRemote Path: " + controller().remotePane()->pathValue().toStdString() + "\nReport:\n";
    EXPECT_EQ(withoutTimestamps(readFile(logPath())), head + "The list froze \xe2\x9c\x93 at %1 100%\n\n---\n\n" + head
        + kTemplate.trimmed().toStdString() + "\n\n---\n\n");
    EXPECT_EQ(readFile(logPath()).find("hunter2"), std::string::npos);
    EXPECT_EQ(banner(), QStringLiteral("✅ Bug report saved to ") + QString::fromStdString(logPath()));
    EXPECT_FALSE(bannerIsError());

    // A base folder that cannot be written: a file stands in its place, and stays as it was.
    std::filesystem::remove_all(folders().baseFolder().toStdString());
    writeFile(folders().baseFolder().toStdString(), "a file where the base folder belongs");
    dialogs().expectText(QStringLiteral("lost?"));
    controller().reportBug();
    EXPECT_EQ(banner(), QStringLiteral("⚠️ Bug report could not be saved to disk."));
    EXPECT_EQ(readFile(folders().baseFolder().toStdString()), "a file where the base folder belongs");
}

TEST_F(HelpWorkflows, TheAboutPanelShowsTheBuildsVersionFallsBackWhenItIsEmptyAndOnlyCloses)
{
    QString const name = QCoreApplication::applicationName();
    QString const organisation = QCoreApplication::organizationName();
    QString const version = QCoreApplication::applicationVersion();
    auto const aboutText = [&] {
        dialogs().expectAlertButton(app::kFirstAlertButton);
        controller().showAboutPanel();
        return lastQuestion().text;
    };

    app::describeApplication(*QCoreApplication::instance());
    EXPECT_EQ(aboutText().section(u'\n', 0, 0), QStringLiteral("Version " PERCHFTP_PROJECT_VERSION));
    EXPECT_EQ(lastQuestion().title, QStringLiteral("About PerchFtp"));
    EXPECT_EQ(lastQuestion().options, QStringList{QStringLiteral("Close")});
    QCoreApplication::setApplicationVersion(QString());
    EXPECT_EQ(aboutText(),
        QStringLiteral("Version 0.1.0\nPerchFtp is a desktop FTP client for local and remote file management."));

    QCoreApplication::setApplicationName(name);
    QCoreApplication::setOrganizationName(organisation);
    QCoreApplication::setApplicationVersion(version);
}

TEST_F(FolderPicker, AChosenFolderOpensAndIsRememberedAndThePaneFallsBackToTheDialogAfterACancel)
{
    chooser.install("kdialog");
    chooser.install("zenity");
    QString const odd = place(R"(say "hi" \ back\slash's $HOME `x`)");
    controller().localPane()->loadLocalDirectory(odd);
    QString const music = place("Music");
    chooser.answer((music + "/\n").toUtf8(), "(zenity:1): Gtk-WARNING **: 10:00:00.000: theme noise");
    controller().openLocalFolder();
    EXPECT_EQ(chooser.arguments(), (QStringList{"--file-selection", "--directory", "--title", "Select a local folder",
                                       "--filename", odd + "/"}))
        << "zenity comes first, and starts in the pane's folder";
    EXPECT_EQ(controller().localPane()->pathValue(), music);
    EXPECT_EQ(banner(), QStringLiteral("✅ Opened local folder: ") + music);
    EXPECT_EQ(QSettings(QStringLiteral("PerchFtp"), QStringLiteral("PerchFtp")).value("PerchFtpLastLocalPanePath").toString(),
        music);

    QString const films = place("Films");
    chooser.answer((films + "\n").toUtf8());
    controller().localPane()->openFolder();
    EXPECT_EQ(controller().localPane()->pathValue(), films);
    EXPECT_TRUE(dialogs().questions().empty()) << "the chooser answered, so no alert and no dialog";
    QString const books = place("Books");
    chooser.answer({}, {}, 1);
    dialogs().expectFolder(books);
    controller().localPane()->openFolder();
    EXPECT_EQ(controller().localPane()->pathValue(), books);
    ASSERT_EQ(dialogs().questions().size(), 1u);
    EXPECT_EQ(lastQuestion().kind, QStringLiteral("folder"));
}

TEST_F(FolderPicker, EachRungOfTheLadderHasItsOwnAlertAndBanner)
{
    QString const unableText = QStringLiteral(
        "PerchFtp could not start the desktop folder chooser. Please check system permissions and try again.");
    struct Row {
        char const* program; // "" leaves none on PATH
        QByteArray error;
        int exitStatus;
        char const* signal;
        QString alertTitle; // empty: no alert
        QString alertText;  // a part of the text
        QString banner;
    } const rows[] = {
        {"", {}, 0, "", "Unable to open folder picker", unableText, "⚠️ Unable to open local folder picker."},
        {"zenity", "Operation not permitted; user canceled", 1, "", "Folder access permission required",
            "The desktop blocked folder access or automation for the folder chooser. Check Privacy & Security "
            "settings and try again.",
            "⚠️ The desktop blocked folder chooser access."},
        {"zenity", "(zenity:7): Gtk-Message: 10:00:00.000: GtkDialog mapped without a transient parent.", 1, "", {},
            {}, "✅ Folder selection canceled."},
        {"zenity", "(zenity:9): Gtk-WARNING **: 10:00:00.000: cannot open display: :99", 1, "",
            "Folder chooser failed", "cannot open display", "⚠️ Folder chooser failed."},
        {"zenity", {}, 5, "", "Folder chooser failed", "The desktop folder chooser did not return a folder.",
            "⚠️ Folder chooser failed."},
        {"zenity", {}, 0, "KILL", "Folder chooser failed", "The folder chooser stopped unexpectedly.",
            "⚠️ Folder chooser failed."},
    };
    QString const before = controller().localPane()->pathValue();
    for (Row const& row : rows) {
        SCOPED_TRACE(row.banner.toStdString() + " " + row.alertText.toStdString());
        if (*row.program) {
            chooser.install(row.program);
        }
        chooser.answer({}, row.error, row.exitStatus, row.signal);
        std::size_t const asked = dialogs().questions().size();
        if (!row.alertTitle.isEmpty()) {
            dialogs().expectAlertButton(app::kFirstAlertButton);
        }
        controller().openLocalFolder();

        ASSERT_EQ(dialogs().questions().size(), asked + (row.alertTitle.isEmpty() ? 0 : 1));
        if (!row.alertTitle.isEmpty()) {
            EXPECT_EQ(lastQuestion().title, row.alertTitle);
            EXPECT_TRUE(lastQuestion().text.contains(row.alertText)) << lastQuestion().text.toStdString();
        }
        EXPECT_EQ(banner(), row.banner);
        EXPECT_EQ(controller().localPane()->pathValue(), before);
    }
}

} // namespace
} // namespace perchftp::test
