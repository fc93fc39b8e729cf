#pragma once

#include <QString>
#include <QStringList>

namespace perchftp::app {

// How one run of the desktop's folder chooser ended, as the child process left it.
struct FolderChooserRun {
    bool started = false;  // false: no chooser is installed, or it could not be started
    QString launchError;   // why it did not start
    bool crashed = false;  // ended by a signal rather than by exiting
    int exitStatus = 0;
    QString standardOutput; // UTF-8; empty when the bytes were not valid UTF-8
    QString standardError;
};

// Runs the desktop's folder chooser as a child process: zenity, or kdialog where zenity is missing,
// found on PATH at the time of the call. The start folder travels as one argument, never through a
// shell. The call blocks, without a time limit, until the user closes the chooser; both outputs are
// read after the child has ended.
class FolderChooser {
public:
    struct Invocation {
        QString program; // full path; empty when no chooser is installed
        QStringList arguments;
    };

    static Invocation invocation(QString const& startFolder, QString const& prompt);
    static FolderChooserRun run(QString const& startFolder, QString const& prompt);
};

// What a chooser run means for the user, decided in this order: a chosen folder; a permission
// complaint; an empty answer or a cancel; anything else is a failure.
enum class FolderChoice {
    Opened,            // exit 0 with a path
    PermissionBlocked, // the error text speaks of permission
    Canceled,          // exit 0 without a path, a cancel in the error text, or the tools' own cancel
    Failed,            // everything else, with errorText to show
};

struct FolderChooserVerdict {
    FolderChoice choice = FolderChoice::Failed;
    QString path;      // trimmed and standardised standard output
    QString errorText; // standard error without toolkit chatter, trimmed; may be empty
};

FolderChooserVerdict judgeFolderChooserRun(FolderChooserRun const& run);

} // namespace perchftp::app
