// A label that scrolls what does not fit.

#include "features/description/ScrollingLabel.h"
#include "tests/support/Patience.h"
#include "tests/support/TestProgram.h"
#include "tests/support/Wheel.h"

#include <QtTest>

#include <QPaintEvent>

namespace {

constexpr int kMostLines = 5;
constexpr int kWidth = 200;

QString numberedLines(int first, int last)
{
    QStringList lines;
    for (int i = first; i <= last; ++i)
        lines << QStringLiteral("line %1").arg(i);
    return lines.join('\n');
}

int heightOf(int lines, const QWidget& widget)
{
    return lines * widget.fontMetrics().lineSpacing() - widget.fontMetrics().leading();
}

QScrollBar& scrollBar(const ScrollingLabel& label)
{
    return *label.findChild<QScrollBar*>();
}

/// Shows the label at its preferred height.
void show(ScrollingLabel& label)
{
    label.resize(kWidth, label.heightForWidth(kWidth));
    label.show();
    QVERIFY(QTest::qWaitForWindowExposed(&label, kPatienceMs));
}

/// The left half of the label, without the scroll bar.
QImage picture(QLabel& label)
{
    return label.grab(QRect(0, 0, kWidth / 2, label.height())).toImage();
}

/// Records the painted area of a widget.
class PaintedArea : public QObject {
public:
    explicit PaintedArea(QWidget* widget)
        : QObject(widget)
    {
        widget->installEventFilter(this);
    }
    QRegion area;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            area += static_cast<QPaintEvent*>(event)->region();
        return QObject::eventFilter(watched, event);
    }
};

class ScrollingLabelTest : public QObject {
    Q_OBJECT

private slots:
    void heightFollowsTheNumberOfLines_data();
    void heightFollowsTheNumberOfLines();
    void sizeHintIsBoundedForAnyText_data();
    void sizeHintIsBoundedForAnyText();
    void looksLikeAnyLabel_data();
    void looksLikeAnyLabel();
    void scrollBarAppearsWhereTheTextDoesNotFit();
    void theWheelScrollsToTheRest();
    void scrollingRepaints();
    void theScrollBarReachesTheEnd();
    void aNewTextIsShownFromItsBeginning();
    void theSameTextKeepsItsScrollPosition();
    void aWideWordIsWrapped();
    void longWordsBreakAfterAHundredCharacters_data();
    void longWordsBreakAfterAHundredCharacters();
    void aNewFontUpdatesTheLayout();
};

void ScrollingLabelTest::heightFollowsTheNumberOfLines_data()
{
    QTest::addColumn<int>("lines");
    QTest::addColumn<int>("high");
    QTest::newRow("1") << 1 << 1;
    QTest::newRow("4") << 4 << 4;
    QTest::newRow("5") << 5 << 5;
    QTest::newRow("6") << 6 << 5;
    QTest::newRow("1000") << 1000 << 5;
}

void ScrollingLabelTest::heightFollowsTheNumberOfLines()
{
    QFETCH(int, lines);
    QFETCH(int, high);
    ScrollingLabel label(kMostLines);
    label.showText(numberedLines(1, lines));
    QCOMPARE(label.text(), numberedLines(1, lines)); // the complete text
    QCOMPARE(label.heightForWidth(kWidth), heightOf(high, label));
}

void ScrollingLabelTest::sizeHintIsBoundedForAnyText_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("lines") << numberedLines(1, 1000);
    QTest::newRow("line breaks") << QString(32000, '\n');
    QTest::newRow("words") << QString("word ").repeated(13000);
    QTest::newRow("one word") << QString(65000, 'w');
}

void ScrollingLabelTest::sizeHintIsBoundedForAnyText()
{
    QFETCH(QString, text);
    ScrollingLabel label(kMostLines);
    const QSize least = label.minimumSizeHint();
    const int usualWidth = label.sizeHint().width();
    QVERIFY(usualWidth > least.width());
    QVERIFY(least.width() > label.fontMetrics().horizontalAdvance("word"));
    label.showText(text);
    QCOMPARE(label.minimumSizeHint(), least);
    QCOMPARE(label.sizeHint(), QSize(usualWidth, heightOf(kMostLines, label)));
    QVERIFY(label.hasHeightForWidth());
    QCOMPARE(label.heightForWidth(kWidth), heightOf(kMostLines, label));
}

void ScrollingLabelTest::looksLikeAnyLabel_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("one line") << "One line";
    QTest::newRow("several") << numberedLines(1, kMostLines);
    QTest::newRow("broken") << "words that are too many for a line of this width";
    QTest::newRow("markup") << "<b>a</b> &amp; &b %1";
    QTest::newRow("empty lines") << "\na\n\nb\n";
}

void ScrollingLabelTest::looksLikeAnyLabel()
{
    QFETCH(QString, text);
    ScrollingLabel label(kMostLines);
    label.showText(text);
    show(label);
    QVERIFY(scrollBar(label).isHidden());

    QLabel other(text);
    other.setTextFormat(Qt::PlainText);
    other.setWordWrap(true);
    other.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    other.resize(label.size());
    other.show();
    QCOMPARE(label.grab().toImage(), other.grab().toImage());
}

void ScrollingLabelTest::scrollBarAppearsWhereTheTextDoesNotFit()
{
    ScrollingLabel label(kMostLines);
    label.showText(numberedLines(1, kMostLines + 1));
    show(label);
    QVERIFY(scrollBar(label).isVisible());
    QCOMPARE(scrollBar(label).geometry().right(), label.rect().right());
    QCOMPARE(scrollBar(label).height(), label.height());
    label.resize(kWidth, 2 * label.height());
    QVERIFY(scrollBar(label).isHidden());
    label.resize(kWidth, heightOf(1, label));
    QVERIFY(scrollBar(label).isVisible());
    label.showText("short");
    QVERIFY(scrollBar(label).isHidden());
}

void ScrollingLabelTest::theWheelScrollsToTheRest()
{
    ScrollingLabel label(kMostLines);
    label.showText(numberedLines(1, 100));
    show(label);
    const QImage beginning = picture(label);
    turnWheel(label, -1);
    QCOMPARE(scrollBar(label).value(), QApplication::wheelScrollLines() * label.fontMetrics().lineSpacing());
    QVERIFY(picture(label) != beginning);
    turnWheel(label, 1);
    QCOMPARE(picture(label), beginning);
}

void ScrollingLabelTest::scrollingRepaints()
{
    ScrollingLabel label(kMostLines);
    label.showText(numberedLines(1, 100));
    show(label);
    QCoreApplication::processEvents();
    const PaintedArea painted(&label);
    scrollBar(label).setValue(3);
    QTRY_VERIFY(painted.area.contains(QRect(0, 0, kWidth / 2, label.height())));
}

void ScrollingLabelTest::theScrollBarReachesTheEnd()
{
    ScrollingLabel label(kMostLines);
    label.showText(numberedLines(1, 100));
    show(label);
    scrollBar(label).setValue(scrollBar(label).maximum());

    ScrollingLabel end(kMostLines);
    end.showText(numberedLines(96, 100));
    show(end);
    QCOMPARE(picture(label), picture(end));
}

void ScrollingLabelTest::aNewTextIsShownFromItsBeginning()
{
    ScrollingLabel label(kMostLines);
    label.showText(numberedLines(1, 100));
    show(label);
    turnWheel(label, -3);
    label.showText(numberedLines(2, 100));
    QCOMPARE(scrollBar(label).value(), 0);
}

void ScrollingLabelTest::theSameTextKeepsItsScrollPosition()
{
    ScrollingLabel label(kMostLines);
    label.showText(numberedLines(1, 100));
    show(label);
    turnWheel(label, -3);
    const int value = scrollBar(label).value();
    QVERIFY(value > 0);
    label.showText(numberedLines(1, 100));
    QCOMPARE(scrollBar(label).value(), value);
}

void ScrollingLabelTest::aWideWordIsWrapped()
{
    ScrollingLabel label(kMostLines);
    label.showText(QString(65000, 'w'));
    show(label);
    // Nothing is cut off: the scrollable height has room for the whole word.
    const int perLine = kWidth / label.fontMetrics().horizontalAdvance('w');
    const int lines = (scrollBar(label).maximum() + label.height()) / label.fontMetrics().lineSpacing();
    QVERIFY2(lines >= 65000 / perLine, qPrintable(QString::number(lines)));
}

void ScrollingLabelTest::longWordsBreakAfterAHundredCharacters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    const auto word = [](int length) { return QString(length, 'w'); };
    const QString mark(QChar(0x301));
    const QString pair = QString::fromUcs4(U"\U0001F600", 1);
    QTest::newRow("letters") << word(150) << word(100) + "\n" + word(50);
    QTest::newRow("a mark") << word(100) + mark + word(50) << word(100) + mark + "\n" + word(50);
    QTest::newRow("a surrogate pair") << word(99) + pair + word(50) << word(99) + pair + "\n" + word(50);
    QTest::newRow("short words") << word(60) + " " + word(60) << word(60) + "\n" + word(60);
}

void ScrollingLabelTest::longWordsBreakAfterAHundredCharacters()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    ScrollingLabel label(kMostLines);
    const int width = 110 * label.fontMetrics().horizontalAdvance('w');
    const auto pictureOf = [&](const QString& shown) {
        label.showText(shown);
        label.resize(width, heightOf(3, label));
        return label.grab().toImage();
    };
    QCOMPARE(pictureOf(text), pictureOf(expected));
}

void ScrollingLabelTest::aNewFontUpdatesTheLayout()
{
    ScrollingLabel label(kMostLines);
    label.showText(numberedLines(1, kMostLines));
    show(label);
    QVERIFY(scrollBar(label).isHidden());
    QFont large = label.font();
    large.setPointSizeF(2 * large.pointSizeF());
    label.setFont(large);
    QVERIFY(scrollBar(label).isVisible());
}

} // namespace

ORVO_TEST_CLASS(ScrollingLabelTest)
#include "ScrollingLabelTest.moc"
