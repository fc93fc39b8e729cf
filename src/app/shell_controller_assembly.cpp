// The main window: its areas from top to bottom, the hidden transfer controls, the wiring of
// every control, and the calls that bring the window's first state.
#include "app/shell_controller.hpp"

#include "app/app_icons.hpp"
#include "app/main_window.hpp"
#include "app/pane/perch_file_pane_controller.hpp"
#include "app/pane/perch_pane_split_view.hpp"
#include "app/protocol_selector.hpp"
#include "app/queue/queue_progress_delegate.hpp"
#include "app/queue/queue_table_model.hpp"
#include "app/status/connect_button.hpp"
#include "app/status/connection_light.hpp"
#include "app/status/status_banner.hpp"

#include <QComboBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QSplitter>
#include <QTableView>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace perchftp::app {

namespace {

constexpr int kWindowWidth = 1360;
constexpr int kWindowHeight = 740;
constexpr int kConstructionMinimumHeight = 620;
constexpr int kMinimumWidth = 840;
constexpr int kMinimumHeight = 520;

QLineEdit* formField(QString const& name, QString const& placeholder, int width)
{
    auto* field = new QLineEdit;
    field->setAccessibleName(name);
    field->setPlaceholderText(placeholder);
    field->setFixedWidth(width);
    return field;
}

// Labels show what they are given as it stands: file names and server words are never markup.
QLabel* plainLabel(QString const& text)
{
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    return label;
}

QLabel* formLabel(QString const& text, QWidget* field)
{
    QLabel* label = plainLabel(text);
    label->setForegroundRole(QPalette::PlaceholderText);
    label->setBuddy(field);
    return label;
}

QPushButton* toolbarButton(QString const& title, QString const& symbol)
{
    auto* button = new QPushButton(themedIcon(symbol), title);
    button->setMinimumHeight(30);
    return button;
}

QLabel* heading(QString const& text)
{
    QLabel* label = plainLabel(text);
    QFont font = label->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 1.1);
    label->setFont(font);
    return label;
}

// A hidden window defers its resize events, so neither its layouts nor its splitters have
// placed their children for the window's real size yet; place them from the top down.
void layOutSubtree(QWidget* widget)
{
    if (QLayout* layout = widget->layout()) {
        layout->activate();
        layout->setGeometry(widget->rect());
    }
    if (auto* splitter = qobject_cast<QSplitter*>(widget)) {
        splitter->refresh();
    }
    for (QWidget* child : widget->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        if (!child->isWindow()) {
            layOutSubtree(child);
        }
    }
}

void centreOnScreen(QWidget* window)
{
    if (QScreen* screen = QGuiApplication::primaryScreen()) {
        QRect frame = window->frameGeometry();
        frame.moveCenter(screen->availableGeometry().center());
        window->move(frame.topLeft());
    }
}

} // namespace

void PerchFtpShellController::createMainWindow(QIcon const& icon)
{
    auto* window = new PerchMainWindow;
    window->setObjectName(QStringLiteral("mainWindow"));
    window->setWindowTitle(QStringLiteral("PerchFtp"));
    window->resize(kWindowWidth, kWindowHeight);
    window->setMinimumSize(kWindowWidth, kConstructionMinimumHeight);
    if (!icon.isNull()) {
        window->setWindowIcon(icon);
    }
    if (mainMenu_) {
        window->setMenuBar(mainMenu_);
    }
    connect(window, &PerchMainWindow::windowWillClose, this, &PerchFtpShellController::windowWillClose);
    centreOnScreen(window);
    hostWindow_ = window;
}

void PerchFtpShellController::assembleMainWindow()
{
    auto* local = new PerchFilePaneController(QStringLiteral("Local"), false, this);
    auto* remote = new PerchFilePaneController(QStringLiteral("Remote"), true, this);

    auto* central = new QWidget;
    auto* layout = new QVBoxLayout(central);
    layout->setContentsMargins(14, 10, 14, 12);
    layout->setSpacing(8);
    layout->addWidget(buildConnectionArea());

    statusBanner_ = new PerchStatusBanner;
    statusLabel_ = statusBanner_->label();
    statusLabel_->setText(QStringLiteral("Ready to connect."));
    layout->addWidget(statusBanner_);

    layout->addWidget(buildWorkArea(local, remote), 1);
    hostWindow_->setCentralWidget(central);

    buildHiddenTransferControls();

    localPane_ = local;
    remotePane_ = remote;
    for (PerchFilePaneController* pane : {localPane_, remotePane_}) {
        pane->setDelegate(this);
        pane->setDialogs(dialogs_.get());
    }
    localPane_->redirectOpenFolderButton(this, &PerchFtpShellController::openLocalFolder);
    wireControls();
    setTabOrderInReadingOrder();
    fillMenus();

    restoreLastLocalPanePath();
    loadLastUsedConnectionIntoForm();

    scheduleDividerPlacement();

    refreshControlState();
    refreshSession();
    protocolSelectionDidChange();

    hostWindow_->setMinimumSize(kMinimumWidth, kMinimumHeight);
    hostWindow_->hide();
}

QWidget* PerchFtpShellController::buildConnectionArea()
{
    auto* area = new QWidget;
    auto* rows = new QVBoxLayout(area);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(8);

    auto* headingRow = new QHBoxLayout;
    headingRow->addWidget(heading(QStringLiteral("Connection")));
    headingRow->addStretch(1);
    connectionStatusLight_ = new PerchConnectionLight;
    connectionStatusText_ = plainLabel(QStringLiteral("Disconnected"));
    headingRow->addWidget(connectionStatusLight_);
    headingRow->addWidget(connectionStatusText_);
    rows->addLayout(headingRow);

    hostField_ = formField(QStringLiteral("Host"), QString(), 280);
    userField_ = formField(QStringLiteral("User"), QStringLiteral("optional"), 170);
    secretField_ = formField(QStringLiteral("Password"), QStringLiteral("optional"), 165);
    secretField_->setEchoMode(QLineEdit::Password);
    portField_ = formField(QStringLiteral("Port"), QString(), 60);
    portField_->setText(QStringLiteral("21"));
    protocolField_ = new PerchProtocolSelector;
    protocolField_->setAccessibleName(QStringLiteral("Protocol"));
    protocolField_->addItems({QStringLiteral("ftp"), QStringLiteral("ftps"), QStringLiteral("sftp")});
    protocolField_->setCurrentIndex(0);
    protocolField_->setFixedWidth(84);

    auto* formRow = new QHBoxLayout;
    formRow->setSpacing(6);
    std::initializer_list<std::pair<char const*, QWidget*>> const form{{"Host", hostField_}, {"User", userField_},
        {"Password", secretField_}, {"Port", portField_}, {"Protocol", protocolField_}};
    for (auto const& [title, field] : form) {
        formRow->addWidget(formLabel(QString::fromLatin1(title), field));
        formRow->addWidget(field);
        formRow->addSpacing(8);
    }
    formRow->addStretch(1);
    rows->addLayout(formRow);

    connectButton_ = new PerchConnectButton(QStringLiteral("Connect"));
    connectButton_->setIcon(themedIcon(QStringLiteral("network")));
    disconnectButton_ = toolbarButton(QStringLiteral("Disconnect"), QStringLiteral("xmark.octagon"));
    disconnectButton_->setFixedWidth(0);
    disconnectButton_->setEnabled(false);
    disconnectButton_->setVisible(false);
    refreshButton_ = toolbarButton(QStringLiteral("Refresh"), QStringLiteral("arrow.clockwise"));
    refreshButton_->setEnabled(false);
    openSavedConnectionButton_ = toolbarButton(QStringLiteral("Open Saved"), QStringLiteral("folder.badge.gearshape"));
    saveConnectionButton_ = toolbarButton(QStringLiteral("Save Connection"), QStringLiteral("bookmark.fill"));
    reportBugButton_ = toolbarButton(QStringLiteral("Report Bug"), QStringLiteral("ladybug.fill"));

    auto* buttonRow = new QHBoxLayout;
    buttonRow->setSpacing(8);
    for (QPushButton* button : {static_cast<QPushButton*>(connectButton_), disconnectButton_, refreshButton_,
             openSavedConnectionButton_, saveConnectionButton_, reportBugButton_}) {
        buttonRow->addWidget(button);
    }
    buttonRow->addStretch(1);
    rows->addLayout(buttonRow);
    return area;
}

// The panes side by side above, the queue panel below.
QWidget* PerchFtpShellController::buildWorkArea(PerchFilePaneController* local, PerchFilePaneController* remote)
{
    paneSplitView_ = new PerchPaneSplitView;
    paneSplitView_->setObjectName(QStringLiteral("paneSplitView"));
    paneSplitView_->addWidget(local->view());
    paneSplitView_->addWidget(remote->view());
    paneSplitView_->setStretchFactor(0, 1);
    paneSplitView_->setStretchFactor(1, 1);
    paneSplitView_->setChildrenCollapsible(false);
    paneSplitView_->setMinimumHeight(220);

    auto* outerSplit = new QSplitter(Qt::Vertical);
    outerSplit->setObjectName(QStringLiteral("outerSplitView"));
    outerSplit->setChildrenCollapsible(false);
    outerSplit->addWidget(paneSplitView_);
    outerSplit->addWidget(buildQueuePanel());
    outerSplit->setStretchFactor(0, 1);
    outerSplit->setStretchFactor(1, 0);
    outerSplit->setSizes({kWindowHeight, 260});
    return outerSplit;
}

QWidget* PerchFtpShellController::buildQueuePanel()
{
    auto* panel = new QWidget;
    panel->setObjectName(QStringLiteral("queuePanel"));
    panel->setMinimumHeight(140);
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(0, 6, 0, 0);
    layout->setSpacing(6);

    auto* header = new QHBoxLayout;
    header->addWidget(heading(QStringLiteral("Transfer queue")));
    header->addSpacing(12);
    queueSummary_ = plainLabel(QStringLiteral("Queue: 0 total | Running: 0 | Completed: 0 | Failed: 0"));
    queueSummary_->setForegroundRole(QPalette::PlaceholderText);
    header->addWidget(queueSummary_);
    header->addStretch(1);
    clearQueueButton_ = new QPushButton(themedIcon(QStringLiteral("trash")), QString());
    clearQueueButton_->setFixedSize(28, 24);
    clearQueueButton_->setToolTip(QStringLiteral("Clear the transfer queue"));
    clearQueueButton_->setAccessibleName(QStringLiteral("Clear the transfer queue"));
    clearQueueButton_->setEnabled(false);
    header->addWidget(clearQueueButton_);
    layout->addLayout(header);

    queueTableDataSource_ = new PerchQueueTableDataSource(this);
    queueTable_ = new QTableView;
    queueTable_->setObjectName(QStringLiteral("queueTable"));
    queueTable_->setAccessibleName(QStringLiteral("Transfer queue"));
    queueTable_->setModel(queueTableDataSource_);
    queueTable_->setItemDelegateForColumn(PerchQueueTableDataSource::ProgressColumn,
        new PerchQueueProgressDelegate(queueTable_));
    queueTable_->horizontalHeader()->hide();
    queueTable_->verticalHeader()->hide();
    queueTable_->verticalHeader()->setDefaultSectionSize(24);
    queueTable_->setAlternatingRowColors(false);
    queueTable_->setShowGrid(false);
    queueTable_->setSelectionBehavior(QAbstractItemView::SelectRows);
    queueTable_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    queueTable_->setTabKeyNavigation(false);
    int const widths[] = {360, 160, 120, 170};
    for (int column = 0; column < PerchQueueTableDataSource::ColumnCount; ++column) {
        queueTable_->setColumnWidth(column, widths[column]);
    }

    auto* logColumn = new QWidget;
    auto* logLayout = new QVBoxLayout(logColumn);
    logLayout->setContentsMargins(0, 0, 0, 0);
    logLayout->setSpacing(4);
    QLabel* logLabel = plainLabel(QStringLiteral("Activity log"));
    logLabel->setForegroundRole(QPalette::PlaceholderText);
    auto* log = new QPlainTextEdit;
    log->setObjectName(QStringLiteral("activityLog"));
    log->setAccessibleName(QStringLiteral("Activity log"));
    log->setReadOnly(true);
    log->setPlaceholderText(QStringLiteral("Connections, listings and transfers are noted here."));
    logLayout->addWidget(logLabel);
    logLayout->addWidget(log, 1);
    setQueueLog(log);

    auto* split = new QSplitter(Qt::Horizontal);
    split->setChildrenCollapsible(false);
    split->addWidget(queueTable_);
    split->addWidget(logColumn);
    split->setStretchFactor(0, 2);
    split->setStretchFactor(1, 1);
    split->setSizes({2 * kWindowWidth / 3, kWindowWidth / 3});
    layout->addWidget(split, 1);
    return panel;
}

// The two paths selected last and the Upload and Download buttons are never shown: their state
// is storage for the transfer workflow and for refreshControlState.
void PerchFtpShellController::buildHiddenTransferControls()
{
    hiddenControls_ = std::make_unique<QWidget>();
    localTransferField_ = new QLineEdit(hiddenControls_.get());
    localTransferField_->setPlaceholderText(QStringLiteral("/tmp/file.txt"));
    localTransferField_->setAccessibleName(QStringLiteral("Local file"));
    remoteTransferField_ = new QLineEdit(hiddenControls_.get());
    remoteTransferField_->setPlaceholderText(QStringLiteral("/destination/file.txt"));
    remoteTransferField_->setAccessibleName(QStringLiteral("Remote path"));
    uploadButton_ = new QPushButton(themedIcon(QStringLiteral("arrow.up.doc.fill")), QStringLiteral("Upload"),
        hiddenControls_.get());
    uploadButton_->setEnabled(false);
    downloadButton_ = new QPushButton(themedIcon(QStringLiteral("arrow.down.doc.fill")), QStringLiteral("Download"),
        hiddenControls_.get());
    downloadButton_->setEnabled(false);
}

void PerchFtpShellController::wireControls()
{
    // The connect button's action follows the connection; refreshControlState installs it.
    connect(protocolField_, &QComboBox::activated, this, &PerchFtpShellController::protocolSelectionDidChange);
    // Return in the form does what Connect does, also while connected: it connects with what the
    // form holds now, replacing the session there is.
    for (QLineEdit* field : {hostField_, userField_, secretField_, portField_}) {
        connect(field, &QLineEdit::returnPressed, this, &PerchFtpShellController::connectSession);
    }
    if (auto* selector = qobject_cast<PerchProtocolSelector*>(protocolField_)) {
        connect(selector, &PerchProtocolSelector::returnPressed, this, &PerchFtpShellController::connectSession);
    }
    connect(disconnectButton_, &QPushButton::clicked, this, &PerchFtpShellController::disconnectSession);
    connect(refreshButton_, &QPushButton::clicked, this, &PerchFtpShellController::refreshSession);
    connect(saveConnectionButton_, &QPushButton::clicked, this, &PerchFtpShellController::saveConnection);
    connect(openSavedConnectionButton_, &QPushButton::clicked, this, &PerchFtpShellController::openSavedConnection);
    connect(reportBugButton_, &QPushButton::clicked, this, &PerchFtpShellController::reportBug);
    connect(uploadButton_, &QPushButton::clicked, this, &PerchFtpShellController::enqueueUpload);
    connect(downloadButton_, &QPushButton::clicked, this, &PerchFtpShellController::enqueueDownload);
    connect(clearQueueButton_, &QPushButton::clicked, this, &PerchFtpShellController::clearTransferQueue);
    connect(paneSplitView_, &PerchPaneSplitView::rightArrowClicked, this, &PerchFtpShellController::centerUploadAction);
    connect(paneSplitView_, &PerchPaneSplitView::leftArrowClicked, this, &PerchFtpShellController::centerDownloadAction);
    if (QToolButton* right = paneSplitView_->rightArrowButton()) {
        right->setIcon(themedIcon(QStringLiteral("arrow.right")));
    }
    if (QToolButton* left = paneSplitView_->leftArrowButton()) {
        left->setIcon(themedIcon(QStringLiteral("arrow.left")));
    }
}

// Tab walks the window as it reads: the form from left to right and its buttons, the local pane,
// the two arrows, the remote pane, then the queue.
void PerchFtpShellController::setTabOrderInReadingOrder()
{
    QList<QWidget*> order{hostField_, userField_, secretField_, portField_, protocolField_, connectButton_,
        disconnectButton_, refreshButton_, openSavedConnectionButton_, saveConnectionButton_, reportBugButton_};
    order += localPane_->controlsInReadingOrder();
    order += {paneSplitView_->rightArrowButton(), paneSplitView_->leftArrowButton()};
    order += remotePane_->controlsInReadingOrder();
    order += {clearQueueButton_, queueTable_, queueLog_};
    for (qsizetype at = 1; at < order.size(); ++at) {
        QWidget::setTabOrder(order[at - 1], order[at]);
    }
}

// Runs once the event loop turns. The panes share the width equally, as their equal holding
// priorities ask, and then the first one gets 10 pixels more than its laid-out width.
void PerchFtpShellController::scheduleDividerPlacement()
{
    QPointer<PerchPaneSplitView> split = paneSplitView_;
    QTimer::singleShot(0, this, [split] {
        if (!split || split->count() < 2) {
            return;
        }
        layOutSubtree(split->window());
        QList<int> sizes = split->sizes();
        int const total = split->width() - split->handleWidth() * (split->count() - 1);
        sizes[0] = total / 2;
        sizes[1] = total - sizes[0];
        split->setSizes(sizes);
        split->setPositionOfDivider(split->widget(0)->width() + 10, 0);
    });
}

} // namespace perchftp::app
