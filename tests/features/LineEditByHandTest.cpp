// The line edit and the spin box in the table, operated by mouse and keyboard: what is written and what is shown.

#include "tests/features/EditorBench.h"
#include "tests/support/TestProgram.h"
#include "tests/support/Wheel.h"

#include <QtTest>

#include <QLineEdit>
#include <QLocale>
#include <QScopeGuard>
#include <QSpinBox>

namespace {

class LineEditByHandTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void lineEditTypedAndEnter();
    void lineEditEscapeWritesNothing();
    void leavingTheUnchangedLineEditWritesItsText();
    void leavingTheLineEditWrites_data();
    void leavingTheLineEditWrites();
    void lineEditRejectsInvalidText_data();
    void lineEditRejectsInvalidText();
    void numbersAreReadInTheCNotation();
    void lineEditOfAWriteOnlyFeature();
    void lineEditOfALongText();
    void lineEditStaysInViewAboveALongDescription();

    void spinBoxByKeyAndWheel();
    void spinBoxTyped();
    void leavingTheSpinBoxWritesNothing_data();
    void leavingTheSpinBoxWritesNothing();
};

// --- Line edit -------------------------------------------------------------------------------------------------------

void LineEditByHandTest::lineEditTypedAndEnter()
{
    EditorBench bench({features::withUnit(features::integer("Number", 37, 0, 100), "mm")});
    auto* lineEdit = bench.openAs<QLineEdit>("Number");
    QVERIFY(lineEdit->hasFocus());
    QCOMPARE(lineEdit->text(), QString("37 mm"));
    EditorBench::type("42"); // all is selected
    QCOMPARE(lineEdit->text(), QString("42"));
    QCOMPARE(bench.written(), QStringList());
    EditorBench::press(Qt::Key_Return);
    QCOMPARE(bench.written(), QStringList{"Number = 42"});
    QCOMPARE(bench.shown("Number"), QString("42 mm"));
    QVERIFY(bench.editor() == nullptr);
    QVERIFY(bench.table().hasFocus());
}

void LineEditByHandTest::lineEditEscapeWritesNothing()
{
    EditorBench bench({features::integer("Number", 37, 0, 100)});
    bench.openAs<QLineEdit>("Number");
    EditorBench::type("42");
    EditorBench::press(Qt::Key_Escape);
    QCOMPARE(bench.written(), QStringList());
    QCOMPARE(bench.shown("Number"), QString("37"));
    QVERIFY(bench.editor() == nullptr);
    QVERIFY(bench.table().hasFocus());
}

void LineEditByHandTest::leavingTheUnchangedLineEditWritesItsText()
{
    EditorBench bench(features::beside(features::withUnit(features::real("Time", 1.23456, 0, 100), "us")));
    bench.openAs<QLineEdit>("Time");
    bench.click("Other");
    QCOMPARE(bench.written(), QStringList{"Time = 1.23"});
}

void LineEditByHandTest::leavingTheLineEditWrites_data()
{
    EditorBench::waysToLeave();
}

void LineEditByHandTest::leavingTheLineEditWrites()
{
    QFETCH(const QString, how);
    EditorBench bench(features::beside(features::integer("Number", 37, 0, 100)));
    bench.openAs<QLineEdit>("Number");
    EditorBench::type("42");
    bench.leave(how);
    QCOMPARE(bench.written(), QStringList{"Number = 42"});
    QCOMPARE(bench.shown("Number"), QString("42"));
    QVERIFY(bench.editor() == nullptr);
}

void LineEditByHandTest::lineEditRejectsInvalidText_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("no number") << "many";
    QTest::newRow("beyond the range") << "101";
    QTest::newRow("beyond 64 bits") << "9223372036854775808";
    QTest::newRow("markup") << "<b>5</b>";
    QTest::newRow("place holder") << "%1";
}

void LineEditByHandTest::lineEditRejectsInvalidText()
{
    QFETCH(const QString, text);
    EditorBench bench({features::integer("Number", 37, 0, 100)});
    bench.openAs<QLineEdit>("Number");
    EditorBench::type(text);
    EditorBench::press(Qt::Key_Enter);
    QCOMPARE(bench.shown("Number"), QString("37"));
    QCOMPARE(scripted::node("Number").intValue, std::int64_t{37});
    QVERIFY(bench.editor() == nullptr);
}

void LineEditByHandTest::numbersAreReadInTheCNotation()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    const auto putBack = qScopeGuard([&] { QLocale::setDefault(before); });
    EditorBench bench({features::real("Time", 37, 0, 10000)});
    QCOMPARE(bench.shown("Time"), QString("37.00"));

    bench.openAs<QLineEdit>("Time");
    EditorBench::type("1500,5");
    EditorBench::press(Qt::Key_Return);
    QCOMPARE(bench.written(), QStringList());
    QCOMPARE(bench.shown("Time"), QString("37.00"));

    bench.openAs<QLineEdit>("Time");
    EditorBench::type("1500.5");
    EditorBench::press(Qt::Key_Return);
    QCOMPARE(bench.written(), QStringList{"Time = 1500.5"});
    QCOMPARE(bench.shown("Time"), QString("1500.50"));
}

void LineEditByHandTest::lineEditOfAWriteOnlyFeature()
{
    EditorBench bench({features::withAccess(features::integer("Key", 0, 0, 100), Orvo::NODE_ACCESS_MODE_WO)});
    QCOMPARE(bench.openAs<QLineEdit>("Key")->text(), QString("== Write-Only =="));
    EditorBench::type("42");
    EditorBench::press(Qt::Key_Return);
    QCOMPARE(bench.written(), QStringList{"Key = 42"});
    QCOMPARE(bench.shown("Key"), QString("== Write-Only ==")); // read again
}

// Leaving an editor writes its text, so the editor must hold all of it.
void LineEditByHandTest::lineEditOfALongText()
{
    const std::string longText(65535, 'x');
    EditorBench bench(features::beside(features::text("Text", longText)));
    auto* lineEdit = bench.openAs<QLineEdit>("Text");
    QCOMPARE(lineEdit->text().size(), 65535);
    bench.click("Other");
    QCOMPARE(bench.written().size(), 1);
    QCOMPARE(scripted::node("Text").strValue.size(), longText.size());
    bench.openAs<QLineEdit>("Text");
    EditorBench::type("short");
    EditorBench::press(Qt::Key_Return);
    QCOMPARE(scripted::node("Text").strValue, std::string("short"));
}

/// F0 to F39; F`described` has a long description.
std::vector<scripted::NodeSpec> numbers(int described)
{
    std::vector<scripted::NodeSpec> specs;
    for (int i = 0; i < 40; ++i) {
        specs.push_back(features::integer("F" + std::to_string(i), i, 0, 100));
        if (i == described)
            specs.back().description = std::string(600, 'd');
    }
    return specs;
}

// A growing description shrinks the table from below.
void LineEditByHandTest::lineEditStaysInViewAboveALongDescription()
{
    const auto cell = [](EditorBench& bench, int number) {
        return bench.table().visualRect(bench.valueCell('F' + QString::number(number)));
    };
    int lowest = 0;
    {
        EditorBench plain(numbers(-1));
        while (plain.table().viewport()->rect().contains(cell(plain, lowest + 1)))
            ++lowest;
    }
    scripted::reset();
    EditorBench bench(numbers(lowest));
    bench.openAs<QLineEdit>('F' + QString::number(lowest - 1));
    const QWidget& viewport = *bench.table().viewport();
    const int before = viewport.height();
    EditorBench::press(Qt::Key_Down);
    QTRY_VERIFY(viewport.height() < before);
    QVERIFY(bench.editor() != nullptr);
    QTRY_COMPARE(bench.editor()->geometry().intersected(viewport.rect()), cell(bench, lowest));
}

// --- Spin box --------------------------------------------------------------------------------------------------------

QSpinBox* openSpinBox(EditorBench& bench, const QString& name)
{
    bench.item(name)->setData(EditorSpinBox, EditorKindRole);
    return bench.openAs<QSpinBox>(name);
}

void LineEditByHandTest::spinBoxByKeyAndWheel()
{
    EditorBench bench({features::integer("Number", 36, 0, 100, 4)});
    QSpinBox* spinBox = openSpinBox(bench, "Number");
    QVERIFY(spinBox->hasFocus());
    EditorBench::press(Qt::Key_Up);
    QCOMPARE(bench.written(), QStringList{"Number = 40"});
    QCOMPARE(bench.shown("Number"), QString("40"));
    EditorBench::press(Qt::Key_Down);
    turnWheel(*spinBox, 1);
    QCOMPARE(bench.written(), (QStringList{"Number = 40", "Number = 36", "Number = 40"}));
    QCOMPARE(scripted::node("Number").intValue, std::int64_t{40});
}

void LineEditByHandTest::spinBoxTyped()
{
    EditorBench bench({features::integer("Number", 37, 0, 100)});
    openSpinBox(bench, "Number");
    EditorBench::type("8"); // all is selected
    QCOMPARE(bench.written(), QStringList{"Number = 8"});
    QCOMPARE(bench.shown("Number"), QString("8"));
    EditorBench::press(Qt::Key_Return); // makes a spin box emit its value again
    QCOMPARE(bench.written(), (QStringList{"Number = 8", "Number = 8"}));
    QVERIFY(bench.editor() == nullptr);
}

void LineEditByHandTest::leavingTheSpinBoxWritesNothing_data()
{
    EditorBench::waysToLeave();
    QTest::newRow("escape") << "escape";
}

void LineEditByHandTest::leavingTheSpinBoxWritesNothing()
{
    QFETCH(const QString, how);
    EditorBench bench(features::beside(features::integer("Number", 37, 0, 100)));
    openSpinBox(bench, "Number");
    bench.leave(how);
    QVERIFY(bench.editor() == nullptr);
    QCOMPARE(bench.written(), QStringList());
    QCOMPARE(bench.shown("Number"), QString("37"));
}

} // namespace

ORVO_TEST_CLASS(LineEditByHandTest)
#include "LineEditByHandTest.moc"
