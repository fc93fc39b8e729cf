// The folder chooser's child process and the verdict read from how it ended.
#include "app/desktop/folder_chooser.hpp"
#include "desktop/fake_folder_chooser.hpp"

#include <gtest/gtest.h>

namespace perchftp::app {
namespace {

FolderChooserRun ended(int status, QString out, QString err, bool crashed = false)
{
    return {true, {}, crashed, status, std::move(out), std::move(err)};
}

QString const kGtkNoise = QStringLiteral(
    "(zenity:4242): Gtk-WARNING **: 10:11:12.131: Theme parsing error: gtk.css:1:0: unknown\n"
    "Gtk-Message: 10:11:12.140: GtkDialog mapped without a transient parent. This is discouraged.\n"
    "(zenity:4242): dbind-WARNING **: 10:11:12.150: AT-SPI: Error retrieving accessibility bus address");

TEST(FolderChooserVerdict, FollowsTheLadderInItsOrderAndKeepsOnlyMeaningfulErrors)
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
        {"the tools' cancel under toolkit chatter", ended(1, "", kGtkNoise), FolderChoice::Canceled},
        {"another status", ended(5, "", ""), FolderChoice::Failed},
        {"a crash, even after printing a path", ended(0, "/srv/x\n", "", true), FolderChoice::Failed},
    };
    for (auto const& c : cases) {
        EXPECT_EQ(judgeFolderChooserRun(c.run).choice, c.expected) << c.what;
    }

    auto const opened = judgeFolderChooserRun(ended(0, "  /home/ann/./Music/../Films/\n", kGtkNoise));
    EXPECT_EQ(opened.path, QStringLiteral("/home/ann/Films"));
    EXPECT_EQ(opened.errorText, QString());
    auto const noDisplay =
        judgeFolderChooserRun(ended(1, "", kGtkNoise + "\n(zenity:9): Gtk-WARNING **: 10:00:00.000: cannot open display: "));
    EXPECT_EQ(noDisplay.choice, FolderChoice::Failed);
    EXPECT_TRUE(noDisplay.errorText.contains(QStringLiteral("cannot open display")));
    EXPECT_FALSE(noDisplay.errorText.contains(QStringLiteral("Theme parsing")));
}

TEST(FolderChooserProcess, ZenityComesFirstKdialogServesWithoutItAndTheStartFolderTravelsIntact)
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

    chooser.install("zenity");
    QString const start = QStringLiteral(R"(/tmp/a "quoted" \back\slash's $HOME `x`)");
    chooser.answer("/picked/folder\n");
    run = FolderChooser::run(start, QStringLiteral("Select a local folder"));
    EXPECT_EQ(run.standardOutput, QStringLiteral("/picked/folder\n"));
    EXPECT_EQ(chooser.arguments(),
        (QStringList{"--file-selection", "--directory", "--title", "Select a local folder", "--filename", start + "/"}));
    chooser.answer(QByteArray("/bad\xff\xfe"));
    EXPECT_EQ(FolderChooser::run(start, QStringLiteral("p")).standardOutput, QString())
        << "output that is not UTF-8 is taken as empty";

    chooser.installBroken("zenity");
    EXPECT_FALSE(FolderChooser::run(QStringLiteral("/"), QStringLiteral("p")).started);
}

} // namespace
} // namespace perchftp::app
