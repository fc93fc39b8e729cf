#include "app/desktop/folder_chooser.hpp"
#include "desktop/fake_folder_chooser.hpp"

#include <gtest/gtest.h>

namespace perchftp::app {
namespace {

FolderChooserRun ended(int status, QString out, QString err, bool crashed = false)
{
    FolderChooserRun run;
    run.started = true;
    run.crashed = crashed;
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
    } const cases[] = {
        {"a chosen folder", ended(0, "/home/ann/Music\n", ""), FolderChoice::Opened},
        {"a chosen folder beside a permission word", ended(0, "/srv/x\n", "permission"), FolderChoice::Opened},
        {"exit 0 without a path but a permission complaint", ended(0, "", "Not Permitted here"),
            FolderChoice::PermissionBlocked},
        {"permission beats cancel", ended(1, "", "NOT AUTHORIZED; user canceled"), FolderChoice::PermissionBlocked},
        {"exit 0 with nothing", ended(0, "  \n", ""), FolderChoice::Canceled},
        {"a cancel in the error text", ended(1, "", "execution error: User canceled. (-128)"), FolderChoice::Canceled},
        {"the tools' own cancel", ended(1, "", ""), FolderChoice::Canceled},
        {"the tools' cancel under toolkit chatter", ended(1, "", kGtkNoise), FolderChoice::Canceled},
        {"no display", ended(1, "", "(zenity:9): Gtk-WARNING **: 10:00:00.000: cannot open display: :99"),
            FolderChoice::Failed},
        {"another status", ended(5, "", ""), FolderChoice::Failed},
        {"a failure text", ended(255, "", "zenity: something broke"), FolderChoice::Failed},
        {"a crash, even after printing a path", ended(0, "/srv/x\n", "", true), FolderChoice::Failed},
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

    EXPECT_EQ(judgeFolderChooserRun(ended(0, "", "", true)).errorText, QStringLiteral("The folder chooser stopped unexpectedly."));
}

TEST(FolderChooserProcess, ZenityGetsTheStartFolderIntactAndItsOutputsAreReadAfterTheEnd)
{
    test::FakeFolderChooser chooser;
    chooser.install("zenity");
    QString const start = QStringLiteral(R"(/tmp/a "quoted" \back\slash's $HOME `x`)");
    chooser.answer("/picked/folder\n");
    auto run = FolderChooser::run(start, QStringLiteral("Select a local folder"));
    ASSERT_TRUE(run.started);
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.standardOutput, QStringLiteral("/picked/folder\n"));
    EXPECT_EQ(chooser.arguments(),
        (QStringList{"--file-selection", "--directory", "--title", "Select a local folder", "--filename", start + "/"}));

    chooser.answer(QByteArray("/bad\xff\xfe"));
    run = FolderChooser::run(QStringLiteral("/"), QStringLiteral("p"));
    EXPECT_EQ(run.standardOutput, QString()) << "output that is not UTF-8 is taken as empty";
    EXPECT_EQ(judgeFolderChooserRun(run).choice, FolderChoice::Canceled);

    chooser.install("kdialog");
    EXPECT_TRUE(FolderChooser::invocation("/x", "p").program.endsWith(QStringLiteral("/zenity"))) << "zenity first";
}

TEST(FolderChooserProcess, KdialogServesWhereZenityIsMissingAndAMissingOrBrokenChooserDoesNotStart)
{
    test::FakeFolderChooser chooser;
    auto run = FolderChooser::run(QStringLiteral("/"), QStringLiteral("p"));
    EXPECT_FALSE(run.started);
    EXPECT_FALSE(run.launchError.isEmpty());

    chooser.install("kdialog");
    chooser.answer({}, {}, 1);
    run = FolderChooser::run(QStringLiteral("/srv/it's"), QStringLiteral("Pick"));
    ASSERT_TRUE(run.started);
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(chooser.arguments(), (QStringList{"--title", "Pick", "--getexistingdirectory", "/srv/it's"}));
    EXPECT_EQ(judgeFolderChooserRun(run).choice, FolderChoice::Canceled);

    chooser.installBroken("zenity");
    EXPECT_FALSE(FolderChooser::run(QStringLiteral("/"), QStringLiteral("p")).started);
}

} // namespace
} // namespace perchftp::app
