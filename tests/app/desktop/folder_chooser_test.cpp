#include "app/desktop/folder_chooser.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

#include <QByteArray>
#include <QFile>
#include <QtGlobal>

#include <filesystem>

namespace {

using perchftp::app::FolderChoice;
using perchftp::app::FolderChooser;
using perchftp::app::FolderChooserRun;
using perchftp::app::judgeFolderChooserRun;
using perchftp::test::TempDir;

FolderChooserRun ended(int status, QString out, QString err)
{
    FolderChooserRun run;
    run.started = true;
    run.exitStatus = status;
    run.standardOutput = std::move(out);
    run.standardError = std::move(err);
    return run;
}

QString const kGtkNoise = QStringLiteral(
    "(zenity:4242): Gtk-WARNING **: 10:11:12.131: Theme parsing error: gtk.css:1:0: unknown\n"
    "Gtk-Message: 10:11:12.140: GtkDialog mapped without a transient parent. This is discouraged.\n"
    "(zenity:4242): dbind-WARNING **: 10:11:12.150: AT-SPI: Error retrieving accessibility bus address");

TEST(FolderChooserVerdict, FollowsTheLadderInItsOrder)
{
    struct Case {
        char const* what;
        FolderChooserRun run;
        FolderChoice expected;
    };
    Case const cases[] = {
        {"a chosen folder", ended(0, "/home/ann/Music\n", ""), FolderChoice::Opened},
        {"a chosen folder beside a permission word", ended(0, "/srv/x\n", "permission"), FolderChoice::Opened},
        {"exit 0 without a path but a permission complaint", ended(0, "", "Not Permitted here"),
         FolderChoice::PermissionBlocked},
        {"permission beats cancel", ended(1, "", "NOT AUTHORIZED; user canceled"), FolderChoice::PermissionBlocked},
        {"exit 0 with nothing", ended(0, "  \n", ""), FolderChoice::Canceled},
        {"a cancel in the error text", ended(1, "", "execution error: User canceled. (-128)"),
         FolderChoice::Canceled},
        {"the tools' own cancel", ended(1, "", ""), FolderChoice::Canceled},
        {"the tools' cancel under toolkit chatter", ended(1, "", kGtkNoise), FolderChoice::Canceled},
        {"no display", ended(1, "", "(zenity:9): Gtk-WARNING **: 10:00:00.000: cannot open display: :99"),
         FolderChoice::Failed},
        {"another status", ended(5, "", ""), FolderChoice::Failed},
        {"a failure text", ended(255, "", "zenity: something broke"), FolderChoice::Failed},
    };
    for (auto const& c : cases) {
        EXPECT_EQ(judgeFolderChooserRun(c.run).choice, c.expected) << c.what;
    }
}

TEST(FolderChooserVerdict, TrimsAndStandardisesThePathAndKeepsOnlyMeaningfulErrors)
{
    auto const opened = judgeFolderChooserRun(ended(0, "  /home/ann/./Music/../Films/\n", kGtkNoise));
    EXPECT_EQ(opened.path, QStringLiteral("/home/ann/Films"));
    EXPECT_EQ(opened.errorText, QString());

    auto const noDisplay =
        judgeFolderChooserRun(ended(1, "", kGtkNoise + "\n(zenity:9): Gtk-WARNING **: 10:00:00.000: cannot open display: "));
    EXPECT_TRUE(noDisplay.errorText.contains(QStringLiteral("cannot open display")));
    EXPECT_FALSE(noDisplay.errorText.contains(QStringLiteral("Theme parsing")));
}

TEST(FolderChooserVerdict, TellsACrashApartFromAFailureToStart)
{
    FolderChooserRun crashed = ended(0, "", "");
    crashed.crashed = true;
    auto const verdict = judgeFolderChooserRun(crashed);
    EXPECT_EQ(verdict.choice, FolderChoice::Failed);
    EXPECT_EQ(verdict.errorText, QStringLiteral("The folder chooser stopped unexpectedly."));
}

// Fake choosers on a PATH of their own: each records its arguments, one per line of a file, and
// answers as the environment tells it.
class FolderChooserProcess : public testing::Test {
protected:
    void SetUp() override
    {
        savedPath_ = qgetenv("PATH");
        std::filesystem::create_directories(bin());
        qputenv("PATH", QByteArray::fromStdString(bin().string()));
        qputenv("FAKE_CHOOSER_ARGS", QByteArray::fromStdString(dir_.file("args")));
    }
    void TearDown() override
    {
        qputenv("PATH", savedPath_);
        for (auto const* name : {"FAKE_CHOOSER_ARGS", "FAKE_CHOOSER_OUT", "FAKE_CHOOSER_ERR", "FAKE_CHOOSER_EXIT",
                                 "FAKE_CHOOSER_SIGNAL"}) {
            qunsetenv(name);
        }
    }

    std::filesystem::path bin() const { return dir_.path() / "bin"; }

    void installFake(std::string const& name)
    {
        auto const path = bin() / name;
        perchftp::test::writeFile(path, "#!/bin/sh\n"
                                        "for a in \"$@\"; do printf '%s\\n' \"$a\"; done > \"$FAKE_CHOOSER_ARGS\"\n"
                                        "printf '%s' \"$FAKE_CHOOSER_OUT\"\n"
                                        "printf '%s' \"$FAKE_CHOOSER_ERR\" >&2\n"
                                        "[ -n \"$FAKE_CHOOSER_SIGNAL\" ] && kill -\"$FAKE_CHOOSER_SIGNAL\" $$\n"
                                        "exit \"${FAKE_CHOOSER_EXIT:-0}\"\n");
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    }

    QStringList recordedArguments() const
    {
        QString const text = QString::fromStdString(perchftp::test::readFile(dir_.file("args")));
        return text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }

    TempDir dir_;
    QByteArray savedPath_;
};

TEST_F(FolderChooserProcess, PassesAStartFolderWithQuotesAndBackslashesIntact)
{
    installFake("zenity");
    QString const start = QStringLiteral(R"(/tmp/a "quoted" \back\slash's $HOME `x`)");
    qputenv("FAKE_CHOOSER_OUT", "/picked/folder\n");
    auto const run = FolderChooser::run(start, QStringLiteral("Select a local folder"));
    ASSERT_TRUE(run.started);
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.standardOutput, QStringLiteral("/picked/folder\n"));
    EXPECT_EQ(recordedArguments(),
              (QStringList{"--file-selection", "--directory", "--title", "Select a local folder", "--filename",
                           start + "/"}));
}

TEST_F(FolderChooserProcess, UsesKdialogWhereZenityIsMissing)
{
    installFake("kdialog");
    qputenv("FAKE_CHOOSER_EXIT", "1");
    auto const run = FolderChooser::run(QStringLiteral("/srv/it's"), QStringLiteral("Pick"));
    ASSERT_TRUE(run.started);
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(recordedArguments(), (QStringList{"--title", "Pick", "--getexistingdirectory", "/srv/it's"}));
    EXPECT_EQ(judgeFolderChooserRun(run).choice, FolderChoice::Canceled);
}

TEST_F(FolderChooserProcess, PrefersZenityWhenBothAreInstalled)
{
    installFake("kdialog");
    installFake("zenity");
    EXPECT_TRUE(FolderChooser::invocation("/x", "p").program.endsWith(QStringLiteral("/zenity")));
}

TEST_F(FolderChooserProcess, ReportsAMachineWithoutAChooserAsNotStarted)
{
    auto const run = FolderChooser::run(QStringLiteral("/"), QStringLiteral("p"));
    EXPECT_FALSE(run.started);
    EXPECT_FALSE(run.launchError.isEmpty());
}

TEST_F(FolderChooserProcess, ReportsAChooserThatCannotBeExecutedAsNotStarted)
{
    installFake("zenity");
    // Not a program the kernel can run: the start itself fails.
    perchftp::test::writeFile(bin() / "zenity", std::string("\x7f" "ELF garbage", 12));
    auto const run = FolderChooser::run(QStringLiteral("/"), QStringLiteral("p"));
    EXPECT_FALSE(run.started);
}

TEST_F(FolderChooserProcess, SeesACrashAndReadsBothOutputsAfterTheEnd)
{
    installFake("zenity");
    qputenv("FAKE_CHOOSER_ERR", "partial complaint");
    qputenv("FAKE_CHOOSER_SIGNAL", "SEGV");
    auto const run = FolderChooser::run(QStringLiteral("/"), QStringLiteral("p"));
    ASSERT_TRUE(run.started);
    EXPECT_TRUE(run.crashed);
    EXPECT_EQ(run.standardError, QStringLiteral("partial complaint"));
    EXPECT_EQ(judgeFolderChooserRun(run).choice, FolderChoice::Failed);
}

TEST_F(FolderChooserProcess, TakesOutputThatIsNotUtf8AsEmpty)
{
    installFake("zenity");
    qputenv("FAKE_CHOOSER_OUT", QByteArray("/bad\xff\xfe"));
    auto const run = FolderChooser::run(QStringLiteral("/"), QStringLiteral("p"));
    EXPECT_EQ(run.standardOutput, QString());
    EXPECT_EQ(judgeFolderChooserRun(run).choice, FolderChoice::Canceled);
}

} // namespace
