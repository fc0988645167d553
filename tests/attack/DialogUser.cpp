#include "tests/attack/DialogUser.h"

#include "discovery/DiscoveryDlg.h"
#include "tests/attack/ViewerSession.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTimerEvent>
#include <QTreeWidget>

namespace {

/// Turns of the timer until a window is closed.
constexpr int kPatience = 6;

void press(QWidget& widget, Qt::Key key)
{
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
}

} // namespace

void DialogUser::timerEvent(QTimerEvent* event)
{
    killTimer(event->timerId()); // restarted at once, because a window may open another one
    startTimer(kPeriodMs);
    QWidget* const modal = QApplication::activeModalWidget();
    QWidget* const popup = QApplication::activePopupWidget();
    if (!modal && !popup) {
        m_turns = 0;
        return;
    }
    const bool enough = ++m_turns > kPatience;
    if (popup) {
        if (enough || draw(3) == 0) {
            popup->close();
        } else {
            press(*popup, draw(2) == 0 ? Qt::Key_Down : Qt::Key_Return);
        }
    } else if (auto* const discovery = qobject_cast<DiscoveryDlg*>(modal)) {
        actIn(*discovery, enough);
    } else if (auto* const file = qobject_cast<QFileDialog*>(modal)) {
        actIn(*file, enough);
    } else if (auto* const dialog = qobject_cast<QDialog*>(modal)) {
        draw(2) == 0 ? dialog->reject() : dialog->accept();
    } else {
        modal->close();
    }
}

void DialogUser::actIn(DiscoveryDlg& dialog, bool enough)
{
    elapseTimers(dialog);
    auto* const list = dialog.findChild<QTreeWidget*>("discoveryWidget");
    auto* const open = dialog.findChild<QAbstractButton*>("openButton");
    switch (enough ? 0 : draw(12)) {
    case 0:
        dialog.reject();
        break;
    case 1:
        press(dialog, Qt::Key_Escape);
        break;
    case 2:
        dialog.findChild<QAbstractButton*>("PushButtonUpateCameraList")->click();
        break;
    case 3:
        list->clearSelection();
        open->click();
        break;
    default:
        if (const int count = list->topLevelItemCount(); count > 0)
            list->setCurrentItem(list->topLevelItem(static_cast<int>(draw(static_cast<std::uint32_t>(count)))));
        open->click();
    }
}

void DialogUser::actIn(QFileDialog& dialog, bool enough)
{
    if (enough || draw(3) == 0) {
        dialog.reject();
        return;
    }
    const QString name = draw(4) == 0 ? "/nowhere/shot.png" : m_folder + QString("/shot%1.png").arg(draw(3));
    dialog.findChild<QLineEdit*>("fileNameEdit")->setText(name);
    QMetaObject::invokeMethod(&dialog, "accept");
}
