#pragma once

#include "app/pane/perch_file_pane_controller.hpp"
#include "app/pane/perch_file_pane_controller_delegate.hpp"
#include "app/pane/perch_pane_table_model.hpp"
#include "app/pane/perch_pane_table_view.hpp"
#include "support/qt_printers.hpp"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QContextMenuEvent>
#include <QItemSelectionModel>
#include <QMenu>
#include <QRegularExpression>
#include <QPoint>
#include <QStringList>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <memory>

namespace perchftp::app::testing {

// A remote row as the shell builds it from a listing.
inline PaneEntry remoteFile(QString const& name, quint64 size,
                            QString const& permissions = QStringLiteral("-rw-r--r--"),
                            QString const& modifiedAt = QStringLiteral(""))
{
    return {name, "/srv/" + name, false, false, permissions, QString::number(size), size, modifiedAt};
}

inline PaneEntry remoteFolder(QString const& name, quint64 sizeValue = 4096)
{
    return {name, "/srv/" + name, true, false, QStringLiteral("drwxr-xr-x"), QStringLiteral(""), sizeValue, {}};
}

// Records every request of a pane as one line: the method, the path, " (dir)" for a folder, then the
// paths of the items or the dropped files. Every request must name the side of the pane that made it.
// A local pane is sent where it asks to go, as the shell does.
class RecordingPaneDelegate : public PerchFilePaneControllerDelegate {
public:
    QStringList calls;

    // The calls other than selection reports, and forgets all calls.
    QStringList takeRequests()
    {
        QStringList requests = calls.filter(QRegularExpression(QStringLiteral("^(?!selection )")));
        calls.clear();
        return requests;
    }

    void didRequestOpenPath(PerchFilePaneController* pane, QString const& path, bool isRemote) override
    {
        record(pane, isRemote, "open " + path);
        if (!isRemote) {
            pane->loadLocalDirectory(path);
        }
    }
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
                PaneEntries const& items = {})
    {
        EXPECT_EQ(isRemote, pane->isRemote()) << call.toStdString();
        for (PaneEntry const& item : items) {
            call += u' ' + item.path;
        }
        calls.append(isDirectory ? call + QStringLiteral(" (dir)") : call);
    }
};

// A double click as a desktop delivers it to a widget: press, release, press, double click, release.
inline void doubleClick(QWidget* widget, QPoint const& position)
{
    QTest::mousePress(widget, Qt::LeftButton, {}, position);
    QTest::mouseRelease(widget, Qt::LeftButton, {}, position);
    QTest::mousePress(widget, Qt::LeftButton, {}, position);
    QTest::mouseDClick(widget, Qt::LeftButton, {}, position);
    QTest::mouseRelease(widget, Qt::LeftButton, {}, position);
}

// One shown pane with a recording delegate and the model checked by QAbstractItemModelTester (the
// tester is declared after the pane so that it goes first).
class PaneFixture : public ::testing::Test {
protected:
    void makePane(bool isRemote)
    {
        QString const title = isRemote ? QStringLiteral("Remote") : QStringLiteral("Local");
        pane = std::make_unique<PerchFilePaneController>(title, isRemote);
        pane->setDelegate(&delegate);
        modelTester = std::make_unique<QAbstractItemModelTester>(
            pane->model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
        pane->view()->resize(1000, 600);
        pane->view()->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(pane->view()));
    }

    QStringList shownNames() const
    {
        QStringList names;
        for (int row = 0; row < pane->model()->rowCount(); ++row) {
            names.append(pane->model()->index(row, PerchPaneTableModel::NameColumn).data().toString());
        }
        return names;
    }
    void selectRows(QList<int> const& rows)
    {
        QItemSelectionModel* selection = pane->tableView()->selectionModel();
        selection->clearSelection();
        for (int const row : rows) {
            selection->setCurrentIndex(pane->model()->index(row, 0),
                                       QItemSelectionModel::Select | QItemSelectionModel::Rows);
        }
    }
    // The centre of a row, or a point below the rows for -1.
    QPoint rowCentre(int row) const
    {
        QWidget const* viewport = pane->tableView()->viewport();
        return row < 0 ? QPoint(viewport->width() / 2, viewport->height() - 4)
                       : pane->tableView()->visualRect(pane->model()->index(row, 0)).center();
    }
    void rightClickRow(int row)
    {
        QTest::mousePress(pane->tableView()->viewport(), Qt::RightButton, {}, rowCentre(row));
        QTest::mouseRelease(pane->tableView()->viewport(), Qt::RightButton, {}, rowCentre(row));
    }
    // Opens the context menu over `row` the way a right click does, triggers the item titled
    // `trigger` if any, and gives the items: "-" for a separator, a disabled item in parentheses.
    QStringList contextMenuAt(int row, QString const& trigger = {})
    {
        rightClickRow(row);
        QStringList items;
        QTimer::singleShot(0, [&] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (!menu) {
                return;
            }
            EXPECT_EQ(menu->title(), "Pane Actions");
            for (QAction* action : menu->actions()) {
                QString const title = action->isSeparator() ? QStringLiteral("-") : action->text();
                items.append(action->isEnabled() ? title : u'(' + title + u')');
                if (title == trigger) {
                    action->trigger();
                }
            }
            menu->close();
        });
        QWidget* viewport = pane->tableView()->viewport();
        QPoint const at = rowCentre(row);
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, viewport->mapToGlobal(at));
        QApplication::sendEvent(viewport, &event);
        EXPECT_FALSE(items.isEmpty()) << "the context menu did not open";
        return items;
    }

    RecordingPaneDelegate delegate;
    std::unique_ptr<PerchFilePaneController> pane;
    std::unique_ptr<QAbstractItemModelTester> modelTester;
};

} // namespace perchftp::app::testing
