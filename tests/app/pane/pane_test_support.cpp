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
    PaneEntry entry;
    entry.name = name;
    entry.path = QStringLiteral("/srv/") + name;
    entry.permissions = permissions;
    entry.size = QString::number(size);
    entry.sizeValue = size;
    entry.modifiedAt = modifiedAt;
    return entry;
}

PaneEntry remoteFolder(QString const& name, quint64 sizeValue)
{
    PaneEntry entry = remoteFile(name, sizeValue, QStringLiteral("drwxr-xr-x"));
    entry.dir = true;
    entry.size = QStringLiteral("");
    return entry;
}

FolderTree::FolderTree()
{
    EXPECT_TRUE(m_root.isValid());
}

QString FolderTree::path(QString const& relative) const
{
    return relative.isEmpty() ? m_root.path() : m_root.path() + u'/' + relative;
}

QString FolderTree::makeFolder(QString const& relative) const
{
    EXPECT_TRUE(QDir().mkpath(path(relative)));
    return path(relative);
}

QString FolderTree::makeFile(QString const& relative, QByteArray const& content) const
{
    QFile file(path(relative));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
    return path(relative);
}

namespace {

QtMessageHandler nextMessageHandler = nullptr;

// The offscreen platform says, for every window, which desktop services it lacks.
void quietOffscreenNotes(QtMsgType type, QMessageLogContext const& context, QString const& message)
{
    QtMessageHandler const next = nextMessageHandler;
    if (message.startsWith(QStringLiteral("This plugin does not support"))) {
        return;
    }
    if (next != nullptr) {
        next(type, context, message);
    }
}

} // namespace

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
    static bool const quieted = [] {
        nextMessageHandler = qInstallMessageHandler(quietOffscreenNotes);
        return true;
    }();
    (void)quieted;
    pane = std::make_unique<PerchFilePaneController>(isRemote ? QStringLiteral("Remote") : QStringLiteral("Local"),
                                                     isRemote);
    pane->setDelegate(&delegate);
    modelTester = std::make_unique<QAbstractItemModelTester>(
        pane->model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    pane->view()->resize(1000, 600);
    pane->view()->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(pane->view()));
}

void PaneFixture::TearDown()
{
    modelTester.reset();
    pane.reset();
}

QStringList PaneFixture::shownNames() const
{
    QStringList names;
    for (int row = 0; row < pane->model()->rowCount(); ++row) {
        names.append(pane->model()->index(row, PerchPaneTableModel::NameColumn).data().toString());
    }
    return names;
}

QStringList PaneFixture::shownPaths() const
{
    QStringList paths;
    for (PaneEntry const& entry : pane->entries()) {
        paths.append(entry.path);
    }
    return paths;
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
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (menu == nullptr) {
            return;
        }
        opened = true;
        whileOpen(menu);
        menu->close();
    });
    QContextMenuEvent event(QContextMenuEvent::Mouse, local, viewport->mapToGlobal(local));
    QApplication::sendEvent(viewport, &event);
    EXPECT_TRUE(opened) << "the context menu did not open";
}

QList<bool> PaneFixture::contextMenuEnabledStatesAt(int row)
{
    QList<bool> states;
    withContextMenuAt(row, [&](QMenu* menu) {
        for (QAction const* action : menu->actions()) {
            states.append(action->isEnabled());
        }
    });
    return states;
}

} // namespace perchftp::app::testing
