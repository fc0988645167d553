// The delegate of the value column, called as a view calls it.

#include "features/editors/TableViewItemDelegate.h"

#include "features/description/DescBox.h"
#include "tests/features/EditorBench.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QComboBox>
#include <QLabel>
#include <QPainter>
#include <QProxyStyle>
#include <QPushButton>
#include <QSpinBox>
#include <QStandardItemModel>

#include <memory>
#include <utility>

using scripted::NodeSpec;

namespace {

class TableViewItemDelegateTest : public QObject {
    Q_OBJECT

private slots:
    void init();

    void editorsByKind_data();
    void editorsByKind();
    void setUpOfEachEditor();
    void editorCoversTheTextOfItsCell_data();
    void editorCoversTheTextOfItsCell();
    void columnsZeroAndOneNeverGetAnEditor();
    void readOnlyCellOpensNoEditorButIsSelectedAndDescribed();
    void accessModes_data();
    void accessModes();
    void accessModeIsReadAgainBeforeItIsTested();
    void noEditorDuringAWrite();
    void openingDescribesTheFeature();

    void loadedText_data();
    void loadedText();
    void comboBoxIsLoaded();
    void spinBoxIsLoaded();
    void spinBoxTakesTheLow32Bits();
    void reloadingWritesNothing_data();
    void reloadingWritesNothing();
    void reloadedEditorWritesOnce_data();
    void reloadedEditorWritesOnce();
    void reloadDuringTheWrite();
    void reloadDuringTheReload();

    void lineEditIsCommittedOnce();
    void lineEditShowsWhatTheItemHolds();
    void sliderIsCommitted();
    void otherEditorsAreNotCommitted_data();
    void otherEditorsAreNotCommitted();
    void commitUpdatesAllFeaturesOnce();
    void commitWithoutAWriteReadsNothing();
    void commitReadsNothingWithoutAutoReRead();

    void geometryIsTheCell();
    void hiddenRowsAreNotPainted();
    void nullEditorIsIgnored();
    void demonstrationRows();
    void withoutView();

private:
    /// One feature for each editor kind that a node selects by itself.
    static std::vector<NodeSpec> everyKind();
    [[nodiscard]] static TableViewItemDelegate& delegateOf(EditorBench& bench)
    {
        return *bench.view().findChild<TableViewItemDelegate*>();
    }
    [[nodiscard]] static std::unique_ptr<QWidget> make(EditorBench& bench, const QString& name, int column = 2)
    {
        const QModelIndex index = bench.features().cell(name, column);
        return std::unique_ptr<QWidget>(delegateOf(bench).createEditor(nullptr, {}, index));
    }
    /// Creates the editor and loads it.
    template <typename Editor>
    [[nodiscard]] static std::unique_ptr<Editor> load(EditorBench& bench, const QString& name)
    {
        std::unique_ptr<QWidget> editor = make(bench, name);
        delegateOf(bench).setEditorData(editor.get(), bench.valueCell(name));
        scripted::clearCalls();
        return std::unique_ptr<Editor>(qobject_cast<Editor*>(editor.release()));
    }
    static void commit(EditorBench& bench, QWidget* editor, const QString& name)
    {
        delegateOf(bench).setModelData(editor, bench.table().model(), bench.valueCell(name));
    }
};

void TableViewItemDelegateTest::init()
{
    scripted::reset();
}

std::vector<NodeSpec> TableViewItemDelegateTest::everyKind()
{
    return {features::integer("Number", 37, 0, 100), features::enumeration("Choice", 1, {"One", "Two", "Three"}),
            features::linear(features::integer("Slider", 37, 0, 100)), features::command("Command"),
            features::text("Text", "words")};
}

/// Gives a feature an editor kind that no node selects by itself.
void setKind(EditorBench& bench, const QString& name, int kind)
{
    bench.item(name)->setData(kind, EditorKindRole);
}

// --- Creating -------------------------------------------------------------------------------------------------------

void TableViewItemDelegateTest::editorsByKind_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("className");
    QTest::newRow("EditorNone") << 0 << QString();
    QTest::newRow("EditorLineEdit") << 1 << "QLineEdit";
    QTest::newRow("EditorComboBox") << 2 << "QComboBox";
    QTest::newRow("EditorSlider") << 3 << "LineEditWithSlider";
    QTest::newRow("EditorButton") << 4 << "QPushButton";
    QTest::newRow("EditorSpinBox") << 5 << "QSpinBox";
    QTest::newRow("beyond") << 6 << QString();
    QTest::newRow("below") << -1 << QString();
}

void TableViewItemDelegateTest::editorsByKind()
{
    QFETCH(const int, kind);
    QFETCH(const QString, className);
    EditorBench bench({features::integer("Number", 37, 0, 100)});
    setKind(bench, "Number", kind);
    QWidget parent;
    const QWidget* editor = delegateOf(bench).createEditor(&parent, {}, bench.valueCell("Number"));
    QCOMPARE(editor != nullptr ? QString(editor->metaObject()->className()) : QString(), className);
    if (editor != nullptr)
        QCOMPARE(editor->parentWidget(), &parent);
}

void TableViewItemDelegateTest::setUpOfEachEditor()
{
    EditorBench bench({features::integer("Number", 37, 0, 100)});
    const auto of = [&](int kind) {
        setKind(bench, "Number", kind);
        return make(bench, "Number");
    };
    QVERIFY(!qobject_cast<QLineEdit*>(of(EditorLineEdit).get())->hasFrame());
    QVERIFY(!qobject_cast<QComboBox*>(of(EditorComboBox).get())->hasFrame());
    QCOMPARE(qobject_cast<QPushButton*>(of(EditorButton).get())->text(), QString("Execute"));
    const auto made = of(EditorSpinBox);
    const auto* spinBox = qobject_cast<QSpinBox*>(made.get());
    QVERIFY(!spinBox->hasFrame());
    QCOMPARE(spinBox->minimum(), 0);
    QCOMPARE(spinBox->maximum(), 100);
}

/// An extreme flat style: it draws no panels at all.
class FlatStyle : public QProxyStyle {
public:
    void drawPrimitive(PrimitiveElement, const QStyleOption*, QPainter*, const QWidget*) const override {}
    void drawControl(ControlElement, const QStyleOption*, QPainter*, const QWidget*) const override {}
    void drawComplexControl(ComplexControl, const QStyleOptionComplex*, QPainter*, const QWidget*) const override {}
};

void TableViewItemDelegateTest::editorCoversTheTextOfItsCell_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("line edit") << int{EditorLineEdit};
    QTest::newRow("combo box") << int{EditorComboBox};
    QTest::newRow("slider") << int{EditorSlider};
    QTest::newRow("button") << int{EditorButton};
    QTest::newRow("spin box") << int{EditorSpinBox};
}

void TableViewItemDelegateTest::editorCoversTheTextOfItsCell()
{
    QFETCH(const int, kind);
    EditorBench bench({features::integer("Number", 37, 0, 100)});
    setKind(bench, "Number", kind);
    const std::unique_ptr<QWidget> editor = make(bench, "Number");
    FlatStyle flat;
    editor->setStyle(&flat);
    editor->resize(120, 22);

    const QColor cell(Qt::magenta);
    QImage image(editor->size(), QImage::Format_RGB32);
    image.fill(cell);
    editor->render(&image, {}, {}, QWidget::DrawChildren); // no background unless the editor fills it itself
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            QVERIFY2(image.pixelColor(x, y) != cell, qPrintable(QString("%1, %2").arg(x).arg(y)));
    }
}

void TableViewItemDelegateTest::columnsZeroAndOneNeverGetAnEditor()
{
    EditorBench bench(everyKind());
    QVERIFY(make(bench, "Number", 2) != nullptr);
    for (const int column : {0, 1}) {
        QVERIFY(make(bench, "Number", column) == nullptr);
        // Not even where the cell has an editor kind.
        bench.table().model()->setData(bench.features().cell("Number", column), 1, EditorKindRole);
        QVERIFY(make(bench, "Number", column) == nullptr);
        bench.click("Number", column);
        QVERIFY(bench.editor() == nullptr);
    }
}

QString heading(EditorBench& bench)
{
    return bench.view().descBox()->findChildren<QLabel*>().first()->text();
}

void TableViewItemDelegateTest::readOnlyCellOpensNoEditorButIsSelectedAndDescribed()
{
    EditorBench bench({features::withAccess(features::integer("Fixed", 1, 0, 10), Orvo::NODE_ACCESS_MODE_RO)});
    QVERIFY(bench.open("Fixed") == nullptr);
    QCOMPARE(bench.table().currentIndex(), bench.valueCell("Fixed"));
    QVERIFY(bench.table().selectionModel()->isSelected(bench.valueCell("Fixed")));
    QCOMPARE(heading(bench), QString("Description: Fixed (Integer node, read-only)"));
}

void TableViewItemDelegateTest::accessModes_data()
{
    QTest::addColumn<int>("access");
    QTest::addColumn<bool>("opens");
    QTest::newRow("not implemented") << 0 << false;
    QTest::newRow("not available") << 1 << false;
    QTest::newRow("write-only") << 2 << true;
    QTest::newRow("read-only") << 3 << false;
    QTest::newRow("read-write") << 4 << true;
}

void TableViewItemDelegateTest::accessModes()
{
    QFETCH(const int, access);
    QFETCH(const bool, opens);
    EditorBench bench({features::integer("Number", 1, 0, 10)});
    scripted::changeNode("Number", [&](NodeSpec& node) { node.access = static_cast<Orvo::NodeAccessMode>(access); });
    QCOMPARE(make(bench, "Number") != nullptr, opens);
}

void TableViewItemDelegateTest::accessModeIsReadAgainBeforeItIsTested()
{
    EditorBench bench({features::withAccess(features::integer("Number", 1, 0, 10), Orvo::NODE_ACCESS_MODE_RO)});
    QVERIFY(bench.open("Number") == nullptr);
    scripted::changeNode("Number", [](NodeSpec& node) { node.access = Orvo::NODE_ACCESS_MODE_RW; });
    QVERIFY(make(bench, "Number") != nullptr);
    scripted::changeNode("Number", [](NodeSpec& node) { node.access = Orvo::NODE_ACCESS_MODE_NA; });
    QVERIFY(make(bench, "Number") == nullptr);
}

void TableViewItemDelegateTest::noEditorDuringAWrite()
{
    EditorBench bench({features::integer("Number", 1, 0, 10)});
    QVERIFY(!delegateOf(bench).writeInProgress());
    bool madeMeanwhile = true;
    scripted::onCall("Nd_SetIntValue", [&] { madeMeanwhile = make(bench, "Number") != nullptr; });
    bench.item("Number")->setNodeValue(QString("5"));
    QVERIFY(!madeMeanwhile);
    QCOMPARE(bench.written(), QStringList{"Number = 5"});
    QVERIFY(make(bench, "Number") != nullptr);
}

void TableViewItemDelegateTest::openingDescribesTheFeature()
{
    EditorBench bench(everyKind());
    static_cast<void>(make(bench, "Choice"));
    QCOMPARE(heading(bench), QString("Description: Choice (Enumeration node)"));
    // Even where no editor opens.
    static_cast<void>(make(bench, "Text", 0));
    QCOMPARE(heading(bench), QString("Description: Text (String node)"));
    delegateOf(bench).setWriteInProgress(true);
    static_cast<void>(make(bench, "Command"));
    QCOMPARE(heading(bench), QString("Description: Command (Command node)"));
}

// --- Loading --------------------------------------------------------------------------------------------------------

void TableViewItemDelegateTest::loadedText_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("line edit") << 1;
    QTest::newRow("none") << 0;
    QTest::newRow("unknown") << 17;
}

void TableViewItemDelegateTest::loadedText()
{
    QFETCH(const int, kind);
    EditorBench bench({features::withUnit(features::integer("Number", 37, 0, 100), "mm")});
    setKind(bench, "Number", kind);
    QLineEdit lineEdit;
    delegateOf(bench).setEditorData(&lineEdit, bench.valueCell("Number"));
    QCOMPARE(lineEdit.text(), QString("37 mm"));
    lineEdit.setText("42");
    commit(bench, &lineEdit, "Number");
    QCOMPARE(bench.written(), QStringList{"Number = 42"});
}

void TableViewItemDelegateTest::comboBoxIsLoaded()
{
    EditorBench bench({features::enumeration("Choice", 1, {"One", "Two", "Three"})});
    const auto comboBox = load<QComboBox>(bench, "Choice");
    QCOMPARE(comboBox->insertPolicy(), QComboBox::NoInsert);
    QVERIFY(!comboBox->isEditable());
    QCOMPARE(comboBox->count(), 3);
    QCOMPARE(comboBox->itemText(0), QString("One"));
    QCOMPARE(comboBox->itemText(2), QString("Three"));
    QCOMPARE(comboBox->currentText(), QString("Two"));
    delegateOf(bench).setEditorData(comboBox.get(), bench.valueCell("Choice"));
    QCOMPARE(comboBox->count(), 3);
}

void TableViewItemDelegateTest::spinBoxIsLoaded()
{
    EditorBench bench({features::integer("Number", 36, 4, 1000, 4)});
    setKind(bench, "Number", EditorSpinBox);
    const auto spinBox = load<QSpinBox>(bench, "Number");
    QCOMPARE(spinBox->minimum(), 4);
    QCOMPARE(spinBox->maximum(), 1000);
    QCOMPARE(spinBox->singleStep(), 4);
    QCOMPARE(spinBox->value(), 36);
}

void TableViewItemDelegateTest::spinBoxTakesTheLow32Bits()
{
    constexpr std::int64_t kHigh = std::int64_t{1} << 32;
    EditorBench bench({features::integer("Number", 36, kHigh + 4, 3 * kHigh + 1000, kHigh + 8)});
    setKind(bench, "Number", EditorSpinBox);
    const auto spinBox = load<QSpinBox>(bench, "Number");
    QCOMPARE(spinBox->minimum(), 4);
    QCOMPARE(spinBox->maximum(), 1000);
    QCOMPARE(spinBox->singleStep(), 8);
    QCOMPARE(spinBox->value(), 36);
    QCOMPARE(bench.written(), QStringList());
}

void TableViewItemDelegateTest::reloadingWritesNothing_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("kind");
    QTest::newRow("spin box") << "Number" << 5;
    QTest::newRow("combo box") << "Choice" << 2;
    QTest::newRow("line edit") << "Number" << 1;
    QTest::newRow("slider") << "Slider" << 3;
    QTest::newRow("button") << "Command" << 4;
}

void TableViewItemDelegateTest::reloadingWritesNothing()
{
    QFETCH(const QString, name);
    QFETCH(const int, kind);
    EditorBench bench(everyKind());
    setKind(bench, name, kind);
    const auto editor = load<QWidget>(bench, name);
    if (name != "Command")
        scripted::changeNode(name.toStdString(), [](NodeSpec& node) { node.intValue = node.intValue == 1 ? 2 : 50; });
    bench.view().updateAllFeatures(true);
    for (int i = 0; i < 3; ++i)
        delegateOf(bench).setEditorData(editor.get(), bench.valueCell(name));
    QCOMPARE(bench.written(), QStringList());
}

void TableViewItemDelegateTest::reloadedEditorWritesOnce_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("written");
    QTest::newRow("spin box") << "Number" << 5 << "Number = 38";
    QTest::newRow("combo box") << "Choice" << 2 << "Choice = Three";
    QTest::newRow("button") << "Command" << 4 << "Command executed";
}

void TableViewItemDelegateTest::reloadedEditorWritesOnce()
{
    QFETCH(const QString, name);
    QFETCH(const int, kind);
    QFETCH(const QString, written);
    EditorBench bench(everyKind());
    setKind(bench, name, kind);
    const auto editor = load<QWidget>(bench, name);
    for (int i = 0; i < 3; ++i)
        delegateOf(bench).setEditorData(editor.get(), bench.valueCell(name));
    if (auto* button = qobject_cast<QPushButton*>(editor.get())) {
        button->click();
    } else {
        QTest::keyClick(editor.get(), kind == EditorSpinBox ? Qt::Key_Up : Qt::Key_Down);
    }
    QCOMPARE(bench.written(), QStringList{written});
}

// The view reloads the open editor whenever its cell changes, and a write changes the cell before it returns.
void TableViewItemDelegateTest::reloadDuringTheWrite()
{
    EditorBench bench({features::enumeration("Choice", 1, {"One", "Two", "Three"})});
    const auto comboBox = load<QComboBox>(bench, "Choice");
    int reloads = 0;
    connect(bench.table().model(), &QAbstractItemModel::dataChanged, comboBox.get(), [&] {
        ++reloads;
        delegateOf(bench).setEditorData(comboBox.get(), bench.valueCell("Choice"));
    });
    QTest::keyClick(comboBox.get(), Qt::Key_Down);
    QVERIFY(reloads > 0);
    QCOMPARE(bench.written(), QStringList{"Choice = Three"});
    QCOMPARE(comboBox->currentText(), QString("Three"));
    QTest::keyClick(comboBox.get(), Qt::Key_Up);
    QCOMPARE(bench.written(), (QStringList{"Choice = Three", "Choice = Two"}));
}

void TableViewItemDelegateTest::reloadDuringTheReload()
{
    EditorBench bench({features::enumeration("Choice", 1, {"One", "Two", "Three"})});
    const auto comboBox = load<QComboBox>(bench, "Choice");
    bool nested = false;
    scripted::onCall("Nd_GetEnumEntryByIndex", [&] {
        if (!std::exchange(nested, true))
            delegateOf(bench).setEditorData(comboBox.get(), bench.valueCell("Choice"));
    });
    delegateOf(bench).setEditorData(comboBox.get(), bench.valueCell("Choice"));
    QVERIFY(nested);
    QCOMPARE(comboBox->count(), 3);
    QCOMPARE(comboBox->currentText(), QString("Two"));
    QCOMPARE(bench.written(), QStringList());
    QTest::keyClick(comboBox.get(), Qt::Key_Down);
    QCOMPARE(bench.written(), QStringList{"Choice = Three"});
}

// --- Committing -----------------------------------------------------------------------------------------------------

void TableViewItemDelegateTest::lineEditIsCommittedOnce()
{
    EditorBench bench({features::integer("Number", 37, 0, 100)});
    const auto lineEdit = load<QLineEdit>(bench, "Number");
    lineEdit->setText("42");
    emit lineEdit->editingFinished(); // must not reach the item's slot
    QCOMPARE(bench.written(), QStringList());
    commit(bench, lineEdit.get(), "Number");
    QCOMPARE(bench.written(), QStringList{"Number = 42"});
}

void TableViewItemDelegateTest::lineEditShowsWhatTheItemHolds()
{
    EditorBench bench({features::withUnit(features::real("Number", 1, 0, 100), "mm")});
    const auto lineEdit = load<QLineEdit>(bench, "Number");
    lineEdit->setText("12.345678");
    commit(bench, lineEdit.get(), "Number");
    QCOMPARE(lineEdit->text(), QString("12.35 mm"));
    lineEdit->setText("much");
    commit(bench, lineEdit.get(), "Number");
    QCOMPARE(lineEdit->text(), QString("12.35 mm"));
}

void TableViewItemDelegateTest::sliderIsCommitted()
{
    EditorBench bench(everyKind());
    const auto slider = load<LineEditWithSlider>(bench, "Slider");
    slider->findChild<QLineEdit*>()->setText("42");
    commit(bench, slider.get(), "Slider");
    QCOMPARE(bench.written(), QStringList{"Slider = 42"});
    QCOMPARE(bench.shown("Slider"), QString("42"));
}

void TableViewItemDelegateTest::otherEditorsAreNotCommitted_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("kind");
    QTest::newRow("spin box") << "Number" << 5;
    QTest::newRow("combo box") << "Choice" << 2;
    QTest::newRow("button") << "Command" << 4;
}

void TableViewItemDelegateTest::otherEditorsAreNotCommitted()
{
    QFETCH(const QString, name);
    QFETCH(const int, kind);
    EditorBench bench(everyKind());
    setKind(bench, name, kind);
    const auto editor = load<QWidget>(bench, name);
    commit(bench, editor.get(), name);
    QCOMPARE(bench.written(), QStringList());
    QCOMPARE(EditorBench::reads(), 0);
}

void TableViewItemDelegateTest::commitUpdatesAllFeaturesOnce()
{
    EditorBench bench(everyKind());
    const auto lineEdit = load<QLineEdit>(bench, "Number");
    lineEdit->setText("42");
    commit(bench, lineEdit.get(), "Number");
    // Number, Slider; Text is read in two calls, and so is Choice.
    QCOMPARE(scripted::count("Nd_GetIntValue"), 2);
    QCOMPARE(scripted::count("Nd_GetStrValue"), 2);
    QCOMPARE(scripted::count("Nd_GetEnumStrValue"), 2);
}

void TableViewItemDelegateTest::commitWithoutAWriteReadsNothing()
{
    EditorBench bench(everyKind());
    const auto lineEdit = load<QLineEdit>(bench, "Number");
    lineEdit->setText("many");
    commit(bench, lineEdit.get(), "Number");
    lineEdit->setText("101"); // refused
    commit(bench, lineEdit.get(), "Number");
    QCOMPARE(bench.written(), QStringList{"Number = 101"});
    QCOMPARE(EditorBench::reads(), 0);
}

void TableViewItemDelegateTest::commitReadsNothingWithoutAutoReRead()
{
    EditorBench bench(everyKind());
    bench.view().setAutoReRead(false);
    const auto lineEdit = load<QLineEdit>(bench, "Number");
    lineEdit->setText("42");
    commit(bench, lineEdit.get(), "Number");
    QCOMPARE(bench.written(), QStringList{"Number = 42"});
    QCOMPARE(EditorBench::reads(), 0);

    // Committing an editor that writes nothing itself still triggers the update for an earlier write.
    bench.view().setAutoReRead(true);
    const auto button = load<QPushButton>(bench, "Command");
    commit(bench, button.get(), "Command");
    QVERIFY(EditorBench::reads() > 0);
}

// --- The rest -------------------------------------------------------------------------------------------------------

void TableViewItemDelegateTest::geometryIsTheCell()
{
    EditorBench bench(everyKind());
    for (const char* name : {"Number", "Choice", "Slider", "Command"}) {
        const auto editor = make(bench, name);
        QStyleOptionViewItem option;
        option.rect = QRect(3, 5, 220, 22);
        delegateOf(bench).updateEditorGeometry(editor.get(), option, bench.valueCell(name));
        QCOMPARE(editor->geometry(), option.rect);
        QCOMPARE(bench.open(name)->geometry(), bench.table().visualRect(bench.valueCell(name)));
    }
}

void TableViewItemDelegateTest::hiddenRowsAreNotPainted()
{
    EditorBench bench(everyKind());
    const auto painted = [&] {
        QImage image(200, 22, QImage::Format_RGB32);
        image.fill(Qt::white);
        QStyleOptionViewItem option;
        option.initFrom(&bench.table());
        option.rect = image.rect();
        QPainter painter(&image);
        delegateOf(bench).paint(&painter, option, bench.valueCell("Text"));
        painter.end();
        QImage empty(image.size(), image.format());
        empty.fill(Qt::white);
        return image != empty;
    };
    QVERIFY(painted());
    bench.view().changeCollapsedState(bench.features().cell("Features"));
    QVERIFY(!painted());
    bench.view().changeCollapsedState(bench.features().cell("Features"));
    QVERIFY(painted());
}

void TableViewItemDelegateTest::nullEditorIsIgnored()
{
    EditorBench bench(everyKind());
    bench.item("Number")->setNodeValue(QString("5")); // a commit would now trigger an update
    scripted::clearCalls();
    delegateOf(bench).setEditorData(nullptr, bench.valueCell("Number"));
    commit(bench, nullptr, "Number");
    delegateOf(bench).updateEditorGeometry(nullptr, {}, bench.valueCell("Number"));
    QVERIFY(scripted::calls().empty());
}

// Rows of plain items have no node and write nothing.
void TableViewItemDelegateTest::demonstrationRows()
{
    EditorBench bench(everyKind());
    auto* model = new QStandardItemModel(0, 3);
    bench.view().setFeatureDataDebug(model);
    bench.view().showModel(model);
    bench.view().changeCollapsedState(bench.features().cell("Scalable"));
    bench.view().changeCollapsedState(bench.features().cell("Analog"));
    scripted::clearCalls();
    for (const char* name : {"Width", "Height", "OffsetX", "OffsetY", "Exposure", "Gain", "Gamma"}) {
        QVERIFY(bench.open(name) == nullptr);
        // Editors passed in anyway are loaded and stored as far as possible.
        QLineEdit lineEdit;
        QSpinBox spinBox;
        QComboBox comboBox;
        QPushButton button;
        LineEditWithSlider slider;
        for (QWidget* editor : std::initializer_list<QWidget*>{&lineEdit, &spinBox, &comboBox, &button, &slider}) {
            delegateOf(bench).setEditorData(editor, bench.valueCell(name));
            commit(bench, editor, name);
        }
    }
    QVERIFY(scripted::calls().empty());
    QCOMPARE(bench.shown("Width"), QString("640"));
}

void TableViewItemDelegateTest::withoutView()
{
    QStandardItemModel model(1, 3);
    model.setData(model.index(0, 2), 1, EditorKindRole);
    model.setData(model.index(0, 2), "text", Qt::EditRole);
    TableViewItemDelegate delegate;
    QWidget parent;
    QVERIFY(delegate.createEditor(&parent, {}, model.index(0, 2)) == nullptr);
    QLineEdit lineEdit;
    delegate.setEditorData(&lineEdit, model.index(0, 2));
    QCOMPARE(lineEdit.text(), QString("text"));
    lineEdit.setText("other");
    delegate.setModelData(&lineEdit, &model, model.index(0, 2));
    QCOMPARE(model.index(0, 2).data().toString(), QString("other"));
}

} // namespace

ORVO_TEST_CLASS(TableViewItemDelegateTest)
#include "TableViewItemDelegateTest.moc"
