#include "pane_test_support.hpp"

#include "app/pane/perch_pane_table_model.hpp"
#include "app/pane/perch_pane_table_view.hpp"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDir>
#include <QFile>
#include <QItemSelectionModel>
#include <QMenu>
#include <QTest>
#include <QTimer>

namespace perchftp::app::testing {

PaneEntry remoteFile(QString const& name, quint64 size, QString const& permissions, QString const& modifiedAt)
{
    return {name, "/srv/" + name, false, false, permissions, QString::number(size), size, modifiedAt};
}

PaneEntry remoteFolder(QString const& name, quint64 sizeValue)
{
    return {name, "/srv/" + name, true, false, QStringLiteral("drwxr-xr-x"), QStringLiteral(""), sizeValue, {}};
}

QStringList RecordingPaneDelegate::takeRequests()
{
    QStringList requests;
    for (QString const& call : calls) {
        if (!call.startsWith(QStringLiteral("selection "))) {
            requests.append(call);
        }
    }
    calls.clear();
    return requests;
}

void RecordingPaneDelegate::record(PerchFilePaneController* pane, bool isRemote, QString call, bool isDirectory,
                                   PaneEntries const& items)
{
    EXPECT_EQ(isRemote, pane->isRemote()) << call.toStdString();
    for (PaneEntry const& item : items) {
        call += u' ' + item.path;
    }
    calls.append(isDirectory ? call + QStringLiteral(" (dir)") : call);
}

void RecordingPaneDelegate::didRequestOpenPath(PerchFilePaneController* pane, QString const& path, bool isRemote)
{
    record(pane, isRemote, "open " + path);
    if (!isRemote) {
        pane->loadLocalDirectory(path);
    }
}

QString FolderTree::makeFolder(QString const& relative) const
{
    EXPECT_TRUE(QDir().mkpath(path(relative)));
    return path(relative);
}

QString FolderTree::makeFile(QString const& relative) const
{
    QFile file(path(relative));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << relative.toStdString();
    return path(relative);
}

void doubleClick(QWidget* widget, QPoint const& position)
{
    QTest::mousePress(widget, Qt::LeftButton, {}, position);
    QTest::mouseRelease(widget, Qt::LeftButton, {}, position);
    QTest::mousePress(widget, Qt::LeftButton, {}, position);
    QTest::mouseDClick(widget, Qt::LeftButton, {}, position);
    QTest::mouseRelease(widget, Qt::LeftButton, {}, position);
}

void PaneFixture::makePane(bool isRemote)
{
    pane = std::make_unique<PerchFilePaneController>(isRemote ? QStringLiteral("Remote") : QStringLiteral("Local"),
                                                     isRemote);
    pane->setDelegate(&delegate);
    modelTester = std::make_unique<QAbstractItemModelTester>(
        pane->model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    pane->view()->resize(1000, 600);
    pane->view()->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(pane->view()));
}

QStringList PaneFixture::shownNames() const
{
    QStringList names;
    for (int row = 0; row < pane->model()->rowCount(); ++row) {
        names.append(pane->model()->index(row, PerchPaneTableModel::NameColumn).data().toString());
    }
    return names;
}

void PaneFixture::selectRows(QList<int> const& rows)
{
    QItemSelectionModel* selection = pane->tableView()->selectionModel();
    selection->clearSelection();
    for (int const row : rows) {
        selection->setCurrentIndex(pane->model()->index(row, 0),
                                   QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }
}

QPoint PaneFixture::rowCentre(int row) const
{
    if (row < 0) {
        QWidget const* viewport = pane->tableView()->viewport();
        return QPoint(viewport->width() / 2, viewport->height() - 4);
    }
    return pane->tableView()->visualRect(pane->model()->index(row, 0)).center();
}

void PaneFixture::rightClickRow(int row)
{
    QWidget* viewport = pane->tableView()->viewport();
    QTest::mousePress(viewport, Qt::RightButton, {}, rowCentre(row));
    QTest::mouseRelease(viewport, Qt::RightButton, {}, rowCentre(row));
}

void PaneFixture::withContextMenuAt(int row, std::function<void(QMenu*)> const& whileOpen)
{
    rightClickRow(row);
    QWidget* viewport = pane->tableView()->viewport();
    QPoint const local = rowCentre(row);
    bool opened = false;
    QTimer::singleShot(0, [&] {
        if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
            opened = true;
            whileOpen(menu);
            menu->close();
        }
    });
    QContextMenuEvent event(QContextMenuEvent::Mouse, local, viewport->mapToGlobal(local));
    QApplication::sendEvent(viewport, &event);
    EXPECT_TRUE(opened) << "the context menu did not open";
}

QStringList PaneFixture::contextMenuAt(int row)
{
    QStringList items;
    withContextMenuAt(row, [&](QMenu* menu) {
        EXPECT_EQ(menu->title(), "Pane Actions");
        for (QAction const* action : menu->actions()) {
            QString const title = action->isSeparator() ? QStringLiteral("-") : action->text();
            items.append(action->isEnabled() ? title : u'(' + title + u')');
        }
    });
    return items;
}

void PaneFixture::triggerContextItem(int row, QString const& title)
{
    withContextMenuAt(row, [&](QMenu* menu) {
        for (QAction* action : menu->actions()) {
            if (action->text() == title) {
                action->trigger();
            }
        }
    });
}

} // namespace perchftp::app::testing
