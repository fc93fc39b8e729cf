#pragma once

#include "app/pane/perch_file_pane_controller.hpp"
#include "recording_pane_delegate.hpp"

#include <QAbstractItemModelTester>
#include <QPoint>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <memory>

class QMenu;

// Readable QString values in assertion messages.
inline void PrintTo(QString const& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace perchftp::app::testing {

// A remote row as the shell builds it from a listing.
PaneEntry remoteFile(QString const& name, quint64 size, QString const& permissions = QStringLiteral("-rw-r--r--"),
                     QString const& modifiedAt = QStringLiteral(""));
PaneEntry remoteFolder(QString const& name, quint64 sizeValue = 4096);

// A real folder tree in a temporary place.
class FolderTree {
public:
    FolderTree();
    QString path(QString const& relative = {}) const;
    QString makeFolder(QString const& relative) const;
    QString makeFile(QString const& relative, QByteArray const& content = "x") const;

private:
    QTemporaryDir m_root;
};

// A double click as a desktop delivers it to a widget: press, release, press, double click, release.
void doubleClick(QWidget* widget, QPoint const& position);

// One shown pane with a recording delegate and the model checked by QAbstractItemModelTester.
class PaneFixture : public ::testing::Test {
protected:
    void makePane(bool isRemote);
    void TearDown() override;

    QStringList shownNames() const;
    QStringList shownPaths() const;
    void selectRows(QList<int> const& rows);
    QPoint rowCentre(int row) const;
    void rightClickRow(int row);
    // Opens the context menu over `row` (-1: below the rows) the way a right click does, runs
    // `whileOpen` on the open menu and closes it.
    void withContextMenuAt(int row, std::function<void(QMenu*)> const& whileOpen);
    QList<bool> contextMenuEnabledStatesAt(int row);

    RecordingPaneDelegate delegate;
    std::unique_ptr<PerchFilePaneController> pane;
    std::unique_ptr<QAbstractItemModelTester> modelTester;
};

} // namespace perchftp::app::testing
