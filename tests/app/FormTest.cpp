// The static form of the main window: what exists, where, with which texts and in which state.

#include "tests/support/TestProgram.h"
#include "ui_MainWindow.h"

#include <QSizeGrip>
#include <QtTest>

namespace {

struct ActionRow {
    const char* name;
    const char* text;
    const char* toolTip; // null: the default, its text
    const char* icon;    // null: none
    bool checkable;
    bool enabled;
};
constexpr ActionRow kActions[] = {
    {"actionOpen", "Open", "Open Camera", "Open.png", false, true},
    {"actionClose", "Close", "Close camera", "Close.png", false, false},
    {"actionStart", "Start", "Start acquisition", "Play.png", false, false},
    {"actionPause", "Pause", "Pause displaying", "Pause.png", true, false},
    {"actionStop", "Stop", "Stop acquisition", "Stop.png", false, false},
    {"actionSoftwareTrigger", "SoftwareTrigger", nullptr, "OneShot.png", false, false},
    {"actionZoomIn", "ZoomIn", nullptr, "ZoomIn.png", false, false},
    {"actionNormalSize", "NormalSize", nullptr, "ZoomX1.png", false, false},
    {"actionZoomOut", "ZoomOut", nullptr, "ZoomOut.png", false, false},
    {"action_Menu_Open", "&Open", nullptr, nullptr, false, true},
    {"action_Menu_Close", "&Close", nullptr, nullptr, false, false},
    {"action_Menu_Exit", "E&xit", nullptr, nullptr, false, true},
    {"action_Menu_Start", "Start", nullptr, nullptr, false, false},
    {"action_Menu_Pause", "Pause", nullptr, nullptr, true, false},
    {"action_Menu_Stop", "Stop", nullptr, nullptr, false, false},
    {"action_Menu_One_Shot", "One Shot", nullptr, nullptr, false, false},
    {"action_Menu_Zoom_In", "Zoom In", nullptr, nullptr, false, false},
    {"action_Menu_Normal_Size", "100%", nullptr, nullptr, false, false},
    {"action_Menu_Zoom_Out", "Zoom Out", nullptr, nullptr, false, false},
    {"action_Menu_About", "&About", nullptr, nullptr, false, true},
    {"actionSnapshot", "Snapshot", "Save the currently displayed image.", "SnapShot.png", false, false},
    {"action_Menu_Snapshot", "Snapshot", nullptr, nullptr, false, false},
};

QStringList namesOf(const QList<QAction*>& actions)
{
    QStringList names;
    for (const QAction* action : actions)
        names << (action->isSeparator() ? QString("|") : action->objectName());
    return names;
}

/// Widgets with names of their own, in order of creation.
QStringList namesOfChildren(const QWidget& parent)
{
    QStringList names;
    for (const QWidget* child : parent.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (!child->objectName().isEmpty() && !child->objectName().startsWith("qt_"))
            names << child->objectName();
    }
    return names;
}

class FormTest : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        window = std::make_unique<QMainWindow>();
        ui.setupUi(window.get());
    }
    void cleanup() { window.reset(); }

    void actions_data();
    void actions();
    void actionsAreInOrder();
    void closeActionIsVisibleWithoutIconInMenus();
    void noActionHasAShortcut();
    void onlyOpenExitAndAboutAreEnabledAtStart();
    void menusAndToolBar();
    void window_();
    void toolBar();
    void widgetTree_data();
    void widgetTree();
    void widgetsAreCreatedInOrder();
    void centralWidgetRightDockAndStatusBarAreEmpty();
    void messageLog();
    void topDockCannotBeMovedFloatedOrClosed();
    void rightDockStaysRight();
    void bottomDockFloatsAndMovesButDoesNotClose();
    void rateLine();
    void logTakesNoTypingAndKeepsNoHistory();

private:
    std::unique_ptr<QMainWindow> window;
    Ui_MainWindow ui{};
};

void FormTest::actions_data()
{
    QTest::addColumn<int>("row");
    for (int i = 0; i < int(std::size(kActions)); ++i)
        QTest::newRow(kActions[i].name) << i;
}

void FormTest::actions()
{
    QFETCH(int, row);
    const ActionRow& expected = kActions[row];
    const auto* const action = window->findChild<QAction*>(expected.name);
    QVERIFY(action);
    QCOMPARE(action->parent(), window.get());
    QCOMPARE(action->text(), QString(expected.text));
    QCOMPARE(action->toolTip(),
             expected.toolTip ? QString(expected.toolTip) : QString(expected.text).remove('&')); // without mnemonic
    QCOMPARE(action->isCheckable(), expected.checkable);
    QCOMPARE(action->isChecked(), false);
    QCOMPARE(action->isEnabled(), expected.enabled);
    QCOMPARE(action->icon().isNull(), expected.icon == nullptr);
    if (expected.icon) {
        const QImage drawn(QString(":/images/Icon/") + expected.icon);
        QVERIFY(!drawn.isNull());
        QCOMPARE(action->icon().availableSizes(QIcon::Normal, QIcon::Off), QList<QSize>{drawn.size()});
        QCOMPARE(action->icon().availableSizes(QIcon::Normal, QIcon::On), QList<QSize>());
        constexpr auto kLikeAPixmap = QImage::Format_ARGB32_Premultiplied;
        QCOMPARE(action->icon().pixmap(drawn.size()).toImage().convertToFormat(kLikeAPixmap),
                 drawn.convertToFormat(kLikeAPixmap));
    }
}

void FormTest::actionsAreInOrder()
{
    QStringList names;
    for (const QAction* action : window->findChildren<QAction*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (!action->objectName().isEmpty())
            names << action->objectName();
    }
    QStringList expected;
    for (const ActionRow& row : kActions)
        expected << row.name;
    QCOMPARE(names, expected);
}

void FormTest::closeActionIsVisibleWithoutIconInMenus()
{
    QVERIFY(ui.actionClose->isVisible());
    QVERIFY(!ui.actionClose->isIconVisibleInMenu());
    QCOMPARE(ui.actionClose->font(), QFont());
}

void FormTest::noActionHasAShortcut()
{
    for (const ActionRow& row : kActions)
        QVERIFY2(window->findChild<QAction*>(row.name)->shortcuts().isEmpty(), row.name);
}

void FormTest::onlyOpenExitAndAboutAreEnabledAtStart()
{
    QStringList enabled;
    for (const ActionRow& row : kActions) {
        if (window->findChild<QAction*>(row.name)->isEnabled())
            enabled << row.name;
    }
    QCOMPARE(enabled, (QStringList{"actionOpen", "action_Menu_Open", "action_Menu_Exit", "action_Menu_About"}));
}

void FormTest::menusAndToolBar()
{
    QStringList menus;
    for (const QAction* action : ui.menuBar->actions())
        menus << action->menu()->objectName() + " " + action->text();
    QCOMPARE(menus, (QStringList{"menu_Camera &Camera", "menuImage &Image", "menuHelp &Help"}));

    QCOMPARE(namesOf(ui.menu_Camera->actions()),
             (QStringList{"action_Menu_Open", "action_Menu_Close", "|", "action_Menu_Exit"}));
    QCOMPARE(namesOf(ui.menuImage->actions()),
             (QStringList{"action_Menu_Start", "action_Menu_Pause", "action_Menu_Stop", "action_Menu_One_Shot", "|",
                          "action_Menu_Snapshot", "action_Menu_Zoom_In", "action_Menu_Normal_Size",
                          "action_Menu_Zoom_Out"}));
    QCOMPARE(namesOf(ui.menuHelp->actions()), QStringList{"action_Menu_About"});
    QCOMPARE(namesOf(ui.mainToolBar->actions()),
             (QStringList{"|", "actionOpen", "actionClose", "|", "actionStart", "actionPause", "actionStop",
                          "actionSoftwareTrigger", "|", "actionSnapshot", "|", "actionZoomIn", "actionNormalSize",
                          "actionZoomOut", "|"}));
}

void FormTest::window_()
{
    QCOMPARE(window->objectName(), QString("MainWindow"));
    QCOMPARE(window->size(), QSize(1200, 880));
    QCOMPARE(window->windowTitle(), QString("OrvoCamLinuxViewer"));
    QVERIFY(window->windowIcon().isNull());

    QMainWindow named;
    named.setObjectName("other");
    Ui_MainWindow form{};
    form.setupUi(&named);
    QCOMPARE(named.objectName(), QString("other"));
}

void FormTest::toolBar()
{
    QVERIFY(!ui.mainToolBar->isMovable());
    QCOMPARE(ui.mainToolBar->allowedAreas(), Qt::ToolBarAreas(Qt::AllToolBarAreas));
    QCOMPARE(ui.mainToolBar->iconSize(), QSize(24, 24));
    QCOMPARE(ui.mainToolBar->toolButtonStyle(), Qt::ToolButtonIconOnly);
    QCOMPARE(window->toolBarArea(ui.mainToolBar), Qt::TopToolBarArea);
}

void FormTest::widgetTree_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("parent");
    QTest::addColumn<QRect>("geometry"); // null: laid out by its container
    QTest::newRow("centralWidget") << "QWidget"
                                   << "MainWindow" << QRect();
    QTest::newRow("menuBar") << "QMenuBar"
                             << "MainWindow" << QRect(0, 0, 1200, 18); // until the window is shown
    QTest::newRow("menu_Camera") << "QMenu"
                                 << "menuBar" << QRect();
    QTest::newRow("menuImage") << "QMenu"
                               << "menuBar" << QRect();
    QTest::newRow("menuHelp") << "QMenu"
                              << "menuBar" << QRect();
    QTest::newRow("mainToolBar") << "QToolBar"
                                 << "MainWindow" << QRect();
    QTest::newRow("statusBar") << "QStatusBar"
                               << "MainWindow" << QRect();
    QTest::newRow("dockWidgetBottom") << "QDockWidget"
                                      << "MainWindow" << QRect();
    QTest::newRow("dockWidgetContents_Bottom") << "QWidget"
                                               << "dockWidgetBottom" << QRect();
    QTest::newRow("messageLogBox") << "QGroupBox"
                                   << "dockWidgetContents_Bottom" << QRect(10, 0, 741, 141);
    QTest::newRow("messageLogEdit") << "QTextEdit"
                                    << "messageLogBox" << QRect(10, 20, 621, 111);
    QTest::newRow("pushButtonClear") << "QPushButton"
                                     << "messageLogBox" << QRect(640, 100, 80, 31);
    QTest::newRow("dockWidgetRight") << "QDockWidget"
                                     << "MainWindow" << QRect();
    QTest::newRow("dockWidgetContents_Right") << "QWidget"
                                              << "dockWidgetRight" << QRect();
    QTest::newRow("dockWidget_Top") << "QDockWidget"
                                    << "MainWindow" << QRect();
    QTest::newRow("dockWidgetContents_11") << "QWidget"
                                           << "dockWidget_Top" << QRect();
    QTest::newRow("label") << "QLabel"
                           << "dockWidgetContents_11" << QRect(0, 4, 20, 20);
    QTest::newRow("labelDispFps") << "QLabel"
                                  << "dockWidgetContents_11" << QRect(30, 3, 361, 21);
}

void FormTest::widgetTree()
{
    QFETCH(QString, className);
    QFETCH(QString, parent);
    QFETCH(QRect, geometry);
    const auto found = window->findChildren<QWidget*>(QTest::currentDataTag());
    QCOMPARE(found.size(), 1);
    QCOMPARE(QString(found.first()->metaObject()->className()), className);
    QCOMPARE(found.first()->parentWidget()->objectName(), parent);
    QVERIFY(found.first()->isEnabled());
    if (!geometry.isNull())
        QCOMPARE(found.first()->geometry(), geometry);
}

void FormTest::widgetsAreCreatedInOrder()
{
    QCOMPARE(namesOfChildren(*window), (QStringList{"centralWidget", "menuBar", "mainToolBar", "statusBar",
                                                    "dockWidgetBottom", "dockWidgetRight", "dockWidget_Top"}));
    QCOMPARE(namesOfChildren(*ui.menuBar), (QStringList{"menuImage", "menuHelp", "menu_Camera"}));
    QCOMPARE(namesOfChildren(*ui.dockWidgetContents_Bottom), QStringList{"messageLogBox"});
    QCOMPARE(namesOfChildren(*ui.messageLogBox), (QStringList{"messageLogEdit", "pushButtonClear"}));
    QCOMPARE(namesOfChildren(*ui.dockWidgetContents_11), (QStringList{"label", "labelDispFps"}));
}

void FormTest::centralWidgetRightDockAndStatusBarAreEmpty()
{
    QVERIFY(ui.centralWidget->children().isEmpty());
    QVERIFY(ui.dockWidgetContents_Right->children().isEmpty()); // not even a layout
    QCOMPARE(ui.statusBar->currentMessage(), QString());
    for (const QWidget* part : ui.statusBar->findChildren<QWidget*>())
        QVERIFY2(qobject_cast<const QSizeGrip*>(part), part->metaObject()->className());
}

void FormTest::messageLog()
{
    QCOMPARE(ui.messageLogBox->title(), QString("Message Log"));
    QCOMPARE(ui.pushButtonClear->text(), QString("Clear"));
    QCOMPARE(ui.messageLogEdit->font(), QFont());
    QCOMPARE(ui.messageLogEdit->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOn);
    QCOMPARE(ui.messageLogEdit->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QCOMPARE(ui.messageLogEdit->lineWrapMode(), QTextEdit::WidgetWidth);
    QCOMPARE(ui.messageLogEdit->lineWrapColumnOrWidth(), 1);
    QVERIFY(!ui.messageLogEdit->acceptRichText());
    QVERIFY(!ui.dockWidgetContents_Bottom->layout());
    QVERIFY(!ui.messageLogBox->layout());
    QVERIFY(!ui.dockWidgetContents_11->layout());
}

void FormTest::topDockCannotBeMovedFloatedOrClosed()
{
    QCOMPARE(ui.dockWidget_Top->features(), QDockWidget::DockWidgetFeatures(QDockWidget::DockWidgetVerticalTitleBar));
    QCOMPARE(ui.dockWidget_Top->allowedAreas(), Qt::DockWidgetAreas(Qt::TopDockWidgetArea));
    QCOMPARE(window->dockWidgetArea(ui.dockWidget_Top), Qt::TopDockWidgetArea);
}

void FormTest::rightDockStaysRight()
{
    QCOMPARE(ui.dockWidgetRight->features(), QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
    QCOMPARE(ui.dockWidgetRight->allowedAreas(), Qt::DockWidgetAreas(Qt::RightDockWidgetArea));
    QCOMPARE(window->dockWidgetArea(ui.dockWidgetRight), Qt::RightDockWidgetArea);
}

void FormTest::bottomDockFloatsAndMovesButDoesNotClose()
{
    QCOMPARE(ui.dockWidgetBottom->features(), QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
    QCOMPARE(ui.dockWidgetBottom->allowedAreas(), Qt::DockWidgetAreas(Qt::AllDockWidgetAreas));
    QCOMPARE(window->dockWidgetArea(ui.dockWidgetBottom), Qt::BottomDockWidgetArea);
}

void FormTest::rateLine()
{
    const QString elevenBlanks(11, ' ');
    QCOMPARE(ui.labelDispFps->text(), "[Disp =" + elevenBlanks + "fps] , [Cap =" + elevenBlanks + "fps]");
    QCOMPARE(ui.labelDispFps->layoutDirection(), Qt::LeftToRight);
    QCOMPARE(ui.label->text(), QString());
    const QImage shown = ui.label->pixmap(Qt::ReturnByValue).toImage();
    QVERIFY(!shown.isNull());
    QCOMPARE(shown, QPixmap(":/images/Icon/info.bmp").toImage());
}

void FormTest::logTakesNoTypingAndKeepsNoHistory()
{
    QTest::keyClicks(ui.messageLogEdit, "typed");
    QCOMPARE(ui.messageLogEdit->toPlainText(), QString());
    for (int i = 0; i < 100; ++i)
        ui.messageLogEdit->append(QString::number(i));
    QVERIFY(!ui.messageLogEdit->isUndoRedoEnabled());
    QCOMPARE(ui.messageLogEdit->document()->availableUndoSteps(), 0);
}

} // namespace

ORVO_TEST_CLASS(FormTest)
#include "FormTest.moc"
