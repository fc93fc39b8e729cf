#include "app/desktop/folder_chooser.hpp"

#include "app/pane/pane_paths.hpp"

#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QStringDecoder>

namespace perchftp::app {
namespace {

QString decodeUtf8(QByteArray const& bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(bytes);
    return decoder.hasError() ? QString() : text;
}

// GTK, GLib, accessibility and font libraries write warnings on stderr even when the user simply
// cancels; those lines say nothing about how the chooser ended.
bool isToolkitChatter(QString const& line)
{
    static QRegularExpression const chatter(
        QStringLiteral(R"(^(\(\S+:\d+\):\s*)?(Gtk|Gdk|GLib|GLib-GObject|GLib-GIO|Gio|dbind|Atk|atk-bridge|Pango|)"
                       R"(GdkPixbuf|dconf|xapp|libEGL|MESA)[-\w]*[-: ]+(WARNING|Message|CRITICAL|DEBUG|INFO|warning)\b)"
                       R"(|^Fontconfig (warning|error)|^Qt: Session management error|^kf\.|^qt\.|^QStandardPaths: )"
                       R"(|^This option is not available\.)"));
    return chatter.match(line).hasMatch() && !line.contains(QStringLiteral("display"), Qt::CaseInsensitive);
}

QString withoutChatter(QString const& standardError)
{
    QStringList kept;
    for (QString const& line : standardError.split(QLatin1Char('\n'))) {
        if (!isToolkitChatter(line.trimmed())) {
            kept.push_back(line);
        }
    }
    return kept.join(QLatin1Char('\n')).trimmed();
}

bool containsAnyOf(QString const& text, std::initializer_list<char const*> words)
{
    for (char const* word : words) {
        if (text.contains(QLatin1String(word), Qt::CaseInsensitive)) {
            return true;
        }
    }
    return false;
}

} // namespace

FolderChooser::Invocation FolderChooser::invocation(QString const& startFolder, QString const& prompt)
{
    if (QString const zenity = QStandardPaths::findExecutable(QStringLiteral("zenity")); !zenity.isEmpty()) {
        // A trailing slash makes zenity open inside the folder rather than select it in its parent.
        QString start = startFolder;
        if (!start.endsWith(QLatin1Char('/'))) {
            start += QLatin1Char('/');
        }
        return {zenity,
                {QStringLiteral("--file-selection"), QStringLiteral("--directory"), QStringLiteral("--title"), prompt,
                 QStringLiteral("--filename"), start}};
    }
    if (QString const kdialog = QStandardPaths::findExecutable(QStringLiteral("kdialog")); !kdialog.isEmpty()) {
        return {kdialog, {QStringLiteral("--title"), prompt, QStringLiteral("--getexistingdirectory"), startFolder}};
    }
    return {};
}

FolderChooserRun FolderChooser::run(QString const& startFolder, QString const& prompt)
{
    FolderChooserRun run;
    Invocation const how = invocation(startFolder, prompt);
    if (how.program.isEmpty()) {
        run.launchError = QStringLiteral("No folder chooser is installed (zenity or kdialog).");
        return run;
    }

    QProcess process;
    process.setProgram(how.program);
    process.setArguments(how.arguments);
    process.setProcessChannelMode(QProcess::SeparateChannels);
    process.start(QIODevice::ReadOnly);
    if (!process.waitForStarted(-1)) {
        run.launchError = process.errorString();
        return run;
    }
    process.closeWriteChannel();
    process.waitForFinished(-1);

    run.started = true;
    run.crashed = process.exitStatus() == QProcess::CrashExit;
    run.exitStatus = process.exitCode();
    run.standardOutput = decodeUtf8(process.readAllStandardOutput());
    run.standardError = decodeUtf8(process.readAllStandardError());
    return run;
}

FolderChooserVerdict judgeFolderChooserRun(FolderChooserRun const& run)
{
    FolderChooserVerdict verdict;
    QString const output = run.standardOutput.trimmed();
    verdict.path = output.isEmpty() ? QString() : detail::standardizePath(output);
    verdict.errorText = withoutChatter(run.standardError);

    if (run.crashed) {
        if (verdict.errorText.isEmpty()) {
            verdict.errorText = QStringLiteral("The folder chooser stopped unexpectedly.");
        }
        return verdict;
    }
    if (run.exitStatus == 0 && !verdict.path.isEmpty()) {
        verdict.choice = FolderChoice::Opened;
        return verdict;
    }
    if (containsAnyOf(verdict.errorText, {"not authorized", "not permitted", "permission"})) {
        verdict.choice = FolderChoice::PermissionBlocked;
        return verdict;
    }
    if (run.exitStatus == 0) {
        verdict.choice = FolderChoice::Canceled;
        return verdict;
    }
    // zenity and kdialog say "cancelled" by exiting with 1 and nothing of substance on stderr.
    if (containsAnyOf(verdict.errorText, {"User canceled", "cancel"}) ||
        (run.exitStatus == 1 && verdict.errorText.isEmpty())) {
        verdict.choice = FolderChoice::Canceled;
        return verdict;
    }
    return verdict;
}

} // namespace perchftp::app
