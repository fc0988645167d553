#include "tests/features/SliderBench.h"

#include "tests/features/FeatureTable.h"
#include "tests/support/Patience.h"

#include <QtTest>

#include <QHBoxLayout>

#include <utility>

void SliderBench::open()
{
    scripted::reset();
    m_window = std::make_unique<QWidget>();
    auto* layout = new QHBoxLayout(m_window.get());
    m_editor = new LineEditWithSlider(m_window.get());
    m_other = new QLineEdit;
    layout->addWidget(m_editor);
    layout->addWidget(m_other);
    m_window->resize(600, 60);
}

void SliderBench::close()
{
    m_window.reset();
    m_model.reset();
    if (m_camera != 0)
        QCOMPARE(Orvo::Cam_Close(std::exchange(m_camera, 0)), 0U);
}

GenAPINodeItem* SliderBench::itemOf(const scripted::NodeSpec& spec)
{
    if (m_camera != 0)
        Orvo::Cam_Close(m_camera);
    scripted::setNodes({scripted::category("Root", {spec.name}), spec});
    m_camera = openScriptedCamera();
    Orvo::CAM_NODE_HANDLE node = 0;
    Orvo::Nd_GetNode(m_camera, spec.name.c_str(), &node);
    m_model = std::make_unique<QStandardItemModel>(1, 3);
    m_item = new GenAPINodeItem(m_camera, node, 0, nullptr, nullptr);
    m_model->setItem(0, 2, m_item);
    m_item->updateVals(true);
    scripted::clearCalls();
    return m_item;
}

void SliderBench::changeRange(const std::function<void(scripted::NodeSpec&)>& change)
{
    scripted::changeNode(m_item->getNodeName().toStdString(), change);
    m_item->updateVals(true);
    m_editor->setValue(m_item);
}

void SliderBench::showEditor()
{
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get(), kPatienceMs));
    m_editor->setFocus();
}

QStringList SliderBench::written()
{
    QStringList values;
    for (const scripted::Call& call : scripted::calls({"Nd_Set"}))
        values << QString::fromStdString(call.arguments.at(2));
    return values;
}
