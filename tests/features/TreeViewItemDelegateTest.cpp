// The delegate that selects editors by name, on a model of plain items.

#include "features/editors/TreeViewItemDelegate.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QStandardItemModel>

#include <memory>

namespace {

constexpr int kEditorNameRole = Qt::UserRole + 3;

class TreeViewItemDelegateTest : public QObject {
    Q_OBJECT

private slots:
    void init();

    void editorsByName_data();
    void editorsByName();
    void setUpOfEachEditor();
    void onlyColumnZero();
    void loadAndStore_data();
    void loadAndStore();
    void typedTextOfASpinBoxIsStored();
    void comboBoxKeepsItsEntryForUnknownTexts();
    void geometryIsTheCell();
    void nullEditorIsIgnored();

private:
    [[nodiscard]] QModelIndex cell(const char* editorName, const QVariant& value, int column = 0);
    [[nodiscard]] std::unique_ptr<QWidget> editor(const QModelIndex& index)
    {
        return std::unique_ptr<QWidget>(m_delegate.createEditor(nullptr, {}, index));
    }

    QStandardItemModel m_model;
    TreeViewItemDelegate m_delegate;
};

void TreeViewItemDelegateTest::init()
{
    m_model.clear();
    m_model.setRowCount(1);
    m_model.setColumnCount(3);
}

QModelIndex TreeViewItemDelegateTest::cell(const char* editorName, const QVariant& value, int column)
{
    const QModelIndex index = m_model.index(0, column);
    m_model.setData(index, QString(editorName), kEditorNameRole);
    m_model.setData(index, value, Qt::EditRole);
    return index;
}

void TreeViewItemDelegateTest::editorsByName_data()
{
    QTest::addColumn<QString>("className");
    QTest::newRow("SpinBox") << "QSpinBox";
    QTest::newRow("ComboBox") << "QComboBox";
    QTest::newRow("Button") << "QPushButton";
    QTest::newRow("Slider") << "QSlider";
    QTest::newRow("TextBox") << "QLineEdit";
    QTest::newRow("spinbox") << QString();
    QTest::newRow("3") << QString();
    QTest::newRow("") << QString();
}

void TreeViewItemDelegateTest::editorsByName()
{
    QFETCH(const QString, className);
    const std::unique_ptr<QWidget> made = editor(cell(QTest::currentDataTag(), "x"));
    QCOMPARE(made ? QString(made->metaObject()->className()) : QString(), className);
}

void TreeViewItemDelegateTest::setUpOfEachEditor()
{
    const auto spinBox = editor(cell("SpinBox", 1));
    QVERIFY(!qobject_cast<QSpinBox*>(spinBox.get())->hasFrame());
    QCOMPARE(qobject_cast<QSpinBox*>(spinBox.get())->minimum(), 0);
    QCOMPARE(qobject_cast<QSpinBox*>(spinBox.get())->maximum(), 100);
    const auto comboBox = editor(cell("ComboBox", "x"));
    QVERIFY(!qobject_cast<QComboBox*>(comboBox.get())->hasFrame());
    const auto button = editor(cell("Button", "x"));
    QCOMPARE(qobject_cast<QPushButton*>(button.get())->text(), QString());
    const auto slider = editor(cell("Slider", 1));
    QCOMPARE(qobject_cast<QSlider*>(slider.get())->orientation(), Qt::Horizontal);
    const auto textBox = editor(cell("TextBox", "x"));
    QVERIFY(!qobject_cast<QLineEdit*>(textBox.get())->hasFrame());

    QWidget parent;
    const QWidget* child = m_delegate.createEditor(&parent, {}, cell("TextBox", "x"));
    QCOMPARE(child->parentWidget(), &parent);
}

void TreeViewItemDelegateTest::onlyColumnZero()
{
    QVERIFY(editor(cell("TextBox", "x", 0)) != nullptr);
    QVERIFY(editor(cell("TextBox", "x", 1)) == nullptr);
    QVERIFY(editor(cell("TextBox", "x", 2)) == nullptr);
}

void TreeViewItemDelegateTest::loadAndStore_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("stored");
    QTest::newRow("SpinBox") << QVariant(37) << QVariant(37);
    QTest::newRow("Slider") << QVariant(37) << QVariant(37);
    QTest::newRow("TextBox") << QVariant("a text") << QVariant("a text");
    QTest::newRow("ComboBox") << QVariant("two") << QVariant("two");
    QTest::newRow("Button") << QVariant("as it was") << QVariant("another");
}

void TreeViewItemDelegateTest::loadAndStore()
{
    QFETCH(const QVariant, value);
    const QModelIndex index = cell(QTest::currentDataTag(), value);
    const auto made = editor(index);
    if (auto* comboBox = qobject_cast<QComboBox*>(made.get()))
        comboBox->addItems({"one", "two", "three"});
    m_delegate.setEditorData(made.get(), index);
    m_model.setData(index, "another", Qt::EditRole);
    m_delegate.setModelData(made.get(), &m_model, index);
    QTEST(index.data(Qt::EditRole), "stored");
}

void TreeViewItemDelegateTest::typedTextOfASpinBoxIsStored()
{
    const QModelIndex index = cell("SpinBox", 1);
    const auto made = editor(index);
    auto* spinBox = qobject_cast<QSpinBox*>(made.get());
    m_delegate.setEditorData(spinBox, index);
    spinBox->setKeyboardTracking(false);
    spinBox->selectAll();
    QTest::keyClicks(spinBox, "42");
    QCOMPARE(spinBox->value(), 1);
    m_delegate.setModelData(spinBox, &m_model, index);
    QCOMPARE(index.data(Qt::EditRole), QVariant(42));
}

void TreeViewItemDelegateTest::comboBoxKeepsItsEntryForUnknownTexts()
{
    const QModelIndex index = cell("ComboBox", "four");
    const auto made = editor(index);
    auto* comboBox = qobject_cast<QComboBox*>(made.get());
    comboBox->addItems({"one", "two"});
    comboBox->setCurrentIndex(1);
    m_delegate.setEditorData(comboBox, index);
    QCOMPARE(comboBox->currentText(), QString("two"));
}

void TreeViewItemDelegateTest::geometryIsTheCell()
{
    const QModelIndex index = cell("TextBox", "x");
    const auto made = editor(index);
    QStyleOptionViewItem option;
    option.rect = QRect(3, 5, 120, 22);
    m_delegate.updateEditorGeometry(made.get(), option, index);
    QCOMPARE(made->geometry(), option.rect);
}

void TreeViewItemDelegateTest::nullEditorIsIgnored()
{
    const QModelIndex index = cell("TextBox", "x");
    m_delegate.setEditorData(nullptr, index);
    m_delegate.setModelData(nullptr, &m_model, index);
    m_delegate.updateEditorGeometry(nullptr, {}, index);
    QCOMPARE(index.data(Qt::EditRole), QVariant("x"));
}

} // namespace

ORVO_TEST_CLASS(TreeViewItemDelegateTest)
#include "TreeViewItemDelegateTest.moc"
