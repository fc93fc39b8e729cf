#pragma once

#include "app/pane/perch_file_pane_controller.hpp"
#include "app/pane/perch_file_pane_controller_delegate.hpp"
#include "support/qt_printers.hpp"

#include <QAbstractItemModelTester>
#include <QPoint>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

class QMenu;

namespace perchftp::app::testing {

// A remote row as the shell builds it from a listing.
PaneEntry remoteFile(QString const& name, quint64 size, QString const& permissions = QStringLiteral("-rw-r--r--"),
                     QString const& modifiedAt = QStringLiteral(""));
PaneEntry remoteFolder(QString const& name, quint64 sizeValue = 4096);

// Records every request of a pane as one line: the method, the path, " (dir)" for a folder, then the
// paths of the items or the dropped files. Every request must name the side of the pane that made it.
// A local pane is sent where it asks to go, as the shell does.
class RecordingPaneDelegate : public PerchFilePaneControllerDelegate {
public:
    QStringList calls;

    // The calls other than selection reports, and forgets all calls.
    QStringList takeRequests();

    void didRequestOpenPath(PerchFilePaneController* pane, QString const& path, bool isRemote) override;
    void didChangeSelectionPath(PerchFilePaneController* pane, QString const& path, bool isRemote) override
    {
        record(pane, isRemote, "selection " + path);
    }
    void didDropPaths(PerchFilePaneController* pane, QStringList const& paths, QString const& target,
                      bool isRemote) override
    {
        record(pane, isRemote, "drop " + target + u' ' + paths.join(u','));
    }
    void didRequestContextTransferForPath(PerchFilePaneController* pane, QString const& path, bool isRemote,
                                          bool isDirectory) override
    {
        record(pane, isRemote, "transfer " + path, isDirectory);
    }
    void didRequestCreateFolder(PerchFilePaneController* pane, bool isRemote) override
    {
        record(pane, isRemote, QStringLiteral("createFolder"));
    }
    void didRequestRenamePath(PerchFilePaneController* pane, QString const& path, bool isRemote,
                              bool isDirectory) override
    {
        record(pane, isRemote, "rename " + path, isDirectory);
    }
    void didRequestDeletePath(PerchFilePaneController* pane, QString const& path, bool isRemote,
                              bool isDirectory) override
    {
        record(pane, isRemote, "delete " + path, isDirectory);
    }
    void didRequestDeletePaths(PerchFilePaneController* pane, PaneEntries const& items, bool isRemote) override
    {
        record(pane, isRemote, QStringLiteral("deleteMany"), false, items);
    }
    void didRequestChangePermissions(PerchFilePaneController* pane, PaneEntries const& items, bool isRemote) override
    {
        record(pane, isRemote, QStringLiteral("permissions"), false, items);
    }

private:
    void record(PerchFilePaneController* pane, bool isRemote, QString call, bool isDirectory = false,
                PaneEntries const& items = {});
};

// A real folder tree in a temporary place.
class FolderTree {
public:
    QString path(QString const& relative = {}) const
    {
        return relative.isEmpty() ? m_root.path() : m_root.path() + u'/' + relative;
    }
    QString makeFolder(QString const& relative) const;
    QString makeFile(QString const& relative) const;

private:
    QTemporaryDir m_root;
};

// A double click as a desktop delivers it to a widget: press, release, press, double click, release.
void doubleClick(QWidget* widget, QPoint const& position);

// One shown pane with a recording delegate and the model checked by QAbstractItemModelTester (the
// tester is declared after the pane so that it goes first).
class PaneFixture : public ::testing::Test {
protected:
    void makePane(bool isRemote);

    QStringList shownNames() const;
    void selectRows(QList<int> const& rows);
    QPoint rowCentre(int row) const;
    void rightClickRow(int row);
    // Opens the context menu over `row` (-1: below the rows) the way a right click does, runs
    // `whileOpen` on the open menu and closes it.
    void withContextMenuAt(int row, std::function<void(QMenu*)> const& whileOpen);
    // The menu's items as opened over `row`: "-" for a separator, a disabled item in parentheses.
    QStringList contextMenuAt(int row);
    void triggerContextItem(int row, QString const& title);

    RecordingPaneDelegate delegate;
    std::unique_ptr<PerchFilePaneController> pane;
    std::unique_ptr<QAbstractItemModelTester> modelTester;
};

} // namespace perchftp::app::testing
