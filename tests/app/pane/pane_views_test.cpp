// The divider lane between the panes and the painting of pane rows.
#include "app/pane/perch_pane_split_view.hpp"
#include "app/pane/perch_pane_table_model.hpp"
#include "app/pane/perch_pane_table_view.hpp"
#include "app/pane/perch_path_field.hpp"
#include "pane_test_support.hpp"

#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

#include <cstdlib>

namespace perchftp::app {
namespace {

class PaneSplitView : public ::testing::Test {
protected:
    void SetUp() override
    {
        split.addWidget(new QLabel("local"));
        split.addWidget(new QLabel("remote"));
        split.resize(840, 400);
        split.setSizes({400, 400});
        split.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&split));
        lane = split.handle(1);
    }

    PerchPaneSplitView split;
    QSplitterHandle* lane = nullptr;
};

TEST_F(PaneSplitView, TheLaneIs40WideWithTwoDarkStripsAndAClearMiddle)
{
    EXPECT_EQ(lane->width(), 40);
    QImage const image = lane->grab().toImage();
    QRgb const strip = QColor::fromRgbF(0.02f, 0.02f, 0.02f).rgb();
    EXPECT_EQ(image.pixel(2, 10), strip);
    EXPECT_EQ(image.pixel(37, 10), strip);
    EXPECT_EQ(image.pixel(20, 10), split.palette().color(QPalette::Window).rgb()) << "the middle is not painted";
}

TEST_F(PaneSplitView, TheRightArrowSitsAtTheCentreAndTheLeftArrowBelowIt)
{
    QToolButton const* right = split.rightArrowButton();
    QToolButton const* left = split.leftArrowButton();
    ASSERT_NE(right, nullptr);
    ASSERT_NE(left, nullptr);
    EXPECT_EQ(right->size(), QSize(34, 44));
    EXPECT_EQ(left->size(), QSize(34, 44));
    EXPECT_LE(std::abs(right->geometry().center().y() - lane->height() / 2), 1);
    EXPECT_LE(std::abs(right->geometry().center().x() - lane->width() / 2), 1);
    EXPECT_EQ(left->y(), right->geometry().bottom() + 1 + 26);
    EXPECT_TRUE(right->isEnabled());
    EXPECT_TRUE(left->isEnabled());
}

TEST_F(PaneSplitView, TheArrowsClickThroughToTheirSignals)
{
    QSignalSpy uploads(&split, &PerchPaneSplitView::rightArrowClicked);
    QSignalSpy downloads(&split, &PerchPaneSplitView::leftArrowClicked);
    QTest::mouseClick(split.rightArrowButton(), Qt::LeftButton);
    QTest::mouseClick(split.leftArrowButton(), Qt::LeftButton);
    QTest::mouseClick(split.leftArrowButton(), Qt::LeftButton);
    EXPECT_EQ(uploads.size(), 1);
    EXPECT_EQ(downloads.size(), 2);
    EXPECT_EQ(split.sizes().first(), 400) << "a click on a button does not move the divider";
}

TEST_F(PaneSplitView, AnEmptyPartOfTheLaneDragsTheDivider)
{
    int const before = split.sizes().first();
    QPoint const empty(20, 8);
    QTest::mousePress(lane, Qt::LeftButton, {}, empty);
    QTest::mouseMove(lane, empty + QPoint(60, 0));
    QTest::mouseRelease(lane, Qt::LeftButton, {}, empty + QPoint(60, 0));
    EXPECT_EQ(split.sizes().first(), before + 60);
}

TEST_F(PaneSplitView, TheDividerCanBePlacedByPosition)
{
    split.setPositionOfDivider(250, 0);
    EXPECT_EQ(split.sizes().first(), 250);
}

class PaneRowPainting : public testing::PaneFixture {
protected:
    void SetUp() override
    {
        makePane(true);
        pane->showRemoteEntries({testing::remoteFile("a", 1), testing::remoteFile("b", 2), testing::remoteFile("c", 3)},
                                "/srv");
    }

    QColor pixelInRow(QImage const& image, int row, int x) const
    {
        QRect const bounds = pane->tableView()->visualRect(pane->model()->index(row, 0));
        return QColor(image.pixel(x, bounds.center().y()));
    }
};

TEST_F(PaneRowPainting, RowsAreStripedAndTheSelectionIsARoundedBlueBand)
{
    selectRows({1});
    QWidget* viewport = pane->tableView()->viewport();
    QImage const image = viewport->grab().toImage();
    int const farRight = viewport->width() - 4;
    QColor const evenRow = QColor::fromRgbF(0.24f, 0.24f, 0.24f).toRgb();
    EXPECT_EQ(pixelInRow(image, 0, farRight).rgb(), evenRow.rgb());
    EXPECT_EQ(pixelInRow(image, 2, farRight).rgb(), evenRow.rgb());

    // The selection blue at alpha 0.55 over the black of an odd row.
    QColor const selected = pixelInRow(image, 1, farRight);
    EXPECT_NEAR(selected.red(), 28, 2);
    EXPECT_NEAR(selected.green(), 64, 2);
    EXPECT_NEAR(selected.blue(), 115, 2);
    QRect const row = pane->tableView()->visualRect(pane->model()->index(1, 0));
    EXPECT_EQ(QColor(image.pixel(0, row.top())), QColor(Qt::black)) << "the band is inset and its corners round";
    pane->tableView()->clearSelection();
    QImage const unselected = viewport->grab().toImage();
    EXPECT_EQ(pixelInRow(unselected, 1, farRight), QColor(Qt::black)) << "odd rows are black";
}


TEST(PanePathField, WithATargetAndActionADoubleClickRunsTheActionInsteadOfSelecting)
{
    PerchPathField field;
    field.setText("/some/where");
    field.resize(300, 30);
    field.show();
    int runs = 0;
    auto target = std::make_unique<QObject>();
    field.setDoubleClickTarget(target.get());
    field.setDoubleClickAction([&](PerchPathField* sender) {
        EXPECT_EQ(sender, &field);
        ++runs;
    });
    testing::doubleClick(&field, QPoint(20, 15));
    EXPECT_EQ(runs, 1);
    EXPECT_FALSE(field.hasSelectedText());

    target.reset();
    testing::doubleClick(&field, QPoint(20, 15));
    EXPECT_EQ(runs, 1) << "a destroyed target makes the field plain again";
    EXPECT_TRUE(field.hasSelectedText());
}

TEST(PaneLifetime, APaneOutlivedByItsAdoptedViewLeavesTheViewWorking)
{
    PerchPaneSplitView split;
    auto local = std::make_unique<PerchFilePaneController>(QStringLiteral("Local"), false);
    auto remote = std::make_unique<PerchFilePaneController>(QStringLiteral("Remote"), true);
    split.addWidget(local->view());
    split.addWidget(remote->view());
    split.show();
    QPointer<QWidget> const view = local->view();
    local.reset();
    remote.reset();
    ASSERT_FALSE(view.isNull()) << "the splitter owns the adopted view";
    split.repaint();
    QTest::mouseDClick(view->findChild<PerchPathField*>(), Qt::LeftButton);
}

TEST(PaneLifetime, ALocalPaneWhoseViewWasDestroyedIgnoresDoubleClicksElsewhere)
{
    PerchFilePaneController pane(QStringLiteral("Local"), false);
    delete pane.view();
    QLineEdit other;
    other.show();
    testing::doubleClick(&other, QPoint(5, 5));
    EXPECT_EQ(pane.view(), nullptr);
}

TEST(PaneLifetime, APaneDeletesTheViewThatNoWindowAdopted)
{
    auto pane = std::make_unique<PerchFilePaneController>(QStringLiteral("Remote"), true);
    QPointer<QWidget> const view = pane->view();
    pane.reset();
    EXPECT_TRUE(view.isNull());
}

} // namespace
} // namespace perchftp::app
