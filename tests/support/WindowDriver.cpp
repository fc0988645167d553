#include "tests/support/WindowDriver.h"

#include "discovery/DiscoveryDlg.h"
#include "display/GraphicsView.h"
#include "display/ImageView.h"

#include <QApplication>
#include <QGraphicsItem>
#include <QLabel>
#include <QPushButton>
#include <QTextEdit>
#include <QTreeWidget>

namespace {

/// The visible dialog once its list is filled or the enumeration failed.
QWidget* readyDialog()
{
    auto* const dialog = qobject_cast<DiscoveryDlg*>(QApplication::activeModalWidget());
    if (!dialog)
        return nullptr;
    const auto* const update = dialog->findChild<QPushButton*>("PushButtonUpateCameraList");
    return update && update->isEnabled() ? dialog : nullptr;
}

} // namespace

WindowDriver::WindowDriver()
    : m_window(std::make_unique<MainWindow>())
{
    m_window->show();
}

WindowDriver::~WindowDriver() = default;

QAction* WindowDriver::action(const char* name) const
{
    auto* const found = child<QAction>(name);
    if (!found)
        qFatal("no action %s", name);
    return found;
}

void WindowDriver::trigger(const char* name)
{
    QAction* const wanted = action(name);
    if (!wanted->isEnabled())
        qFatal("%s is disabled", name);
    wanted->trigger();
}

void WindowDriver::triggerDisabled(const char* name)
{
    const QAction* const wanted = action(name);
    if (wanted->isEnabled())
        qFatal("%s is enabled", name);
    const QByteArray slot = QByteArray("on_") + name + "_triggered";
    const bool called = wanted->isCheckable()
                            ? QMetaObject::invokeMethod(m_window.get(), slot, Q_ARG(bool, !wanted->isChecked()))
                            : QMetaObject::invokeMethod(m_window.get(), slot);
    if (!called)
        qFatal("no slot %s", slot.constData());
}

void WindowDriver::open(const char* action)
{
    const auto takeFirst = [](DiscoveryDlg& dialog) {
        auto* const button = dialog.findChild<QPushButton*>("openButton");
        if (button->isEnabled()) {
            button->click();
        } else {
            dialog.reject();
        }
    };
    open(takeFirst, action);
}

void WindowDriver::open(const std::function<void(DiscoveryDlg&)>& user, const char* action)
{
    modal::during([&] { trigger(action); }, readyDialog,
                  [&](QWidget& dialog) { user(static_cast<DiscoveryDlg&>(dialog)); });
}

bool WindowDriver::openModel(const QString& model, const std::function<void()>& chosen)
{
    constexpr int kModelColumn = 1;
    open([&](DiscoveryDlg& dialog) {
        auto* const list = dialog.findChild<QTreeWidget*>("discoveryWidget");
        const auto found = list->findItems(model, Qt::MatchExactly, kModelColumn);
        if (found.isEmpty()) {
            dialog.reject();
            return;
        }
        list->setCurrentItem(found.first());
        if (chosen)
            chosen();
        dialog.findChild<QPushButton*>("openButton")->click();
    });
    return enabled("actionStart");
}

bool WindowDriver::triggerModal(const char* name, const ModalUser& user)
{
    return modal::during([&] { trigger(name); }, user) > 0;
}

ImageView* WindowDriver::imageView() const
{
    return qobject_cast<ImageView*>(m_window->centralWidget());
}

QRectF WindowDriver::imageArea() const
{
    const ImageView* const view = imageView();
    return view ? view->view()->scene()->items().first()->boundingRect() : QRectF();
}

QStringList WindowDriver::log() const
{
    const QString text = child<QTextEdit>("messageLogEdit")->toPlainText();
    return text.isEmpty() ? QStringList() : text.split('\n');
}

void WindowDriver::clearLog()
{
    child<QPushButton>("pushButtonClear")->click();
}

QString WindowDriver::rates() const
{
    return child<QLabel>("labelDispFps")->text();
}
