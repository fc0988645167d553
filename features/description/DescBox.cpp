#include "features/description/DescBox.h"

#include "features/description/PlainToolTip.h"
#include "features/item/GenAPINodeItem.h"

#include <QHelpEvent>
#include <QVBoxLayout>

namespace {

// In lines. The limit protects the height of the table above from long descriptions.
constexpr int kHighestHeading = 4;
constexpr int kHighestText = 12;

const QString kHeadingStart = QStringLiteral("Description: ");

struct AccessText {
    Orvo::NodeAccessMode mode;
    const char* text;
};

// Read-write is the normal case: only restricted access is mentioned.
constexpr AccessText kAccessTexts[] = {
    {Orvo::NODE_ACCESS_MODE_NI, "not implemented"},
    {Orvo::NODE_ACCESS_MODE_NA, "not available"},
    {Orvo::NODE_ACCESS_MODE_WO, "write-only"},
    {Orvo::NODE_ACCESS_MODE_RO, "read-only"},
};

QString accessText(Orvo::NodeAccessMode mode)
{
    for (const AccessText& entry : kAccessTexts) {
        if (entry.mode == mode)
            return QString::fromLatin1(entry.text);
    }
    return {};
}

} // namespace

DescBox::DescBox(QWidget* parent)
    : QWidget(parent)
    , m_heading(kHighestHeading)
    , m_text(kHighestText)
{
    QFont bold = m_heading.font();
    bold.setWeight(QFont::Bold);
    m_heading.setFont(bold);
    m_heading.showText(QStringLiteral("Description:"));

    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 3, 2, 1);
    layout->addWidget(&m_heading);
    layout->addWidget(&m_text);
}

DescBox::~DescBox() = default;

void DescBox::setText(GenAPINodeItem* item)
{
    m_item = item;
    if (m_item)
        m_item->updateVals(true);
    if (!m_item) { // the read may have destroyed the item
        clear();
        return;
    }
    const QString access = accessText(m_item->getAccessMode());
    m_heading.showText(kHeadingStart + m_item->getNodeName() + " (" + m_item->getStrTypeNode() +
                       (access.isEmpty() ? QStringLiteral(" node)") : " node, " + access + ')'));
    m_text.showText(m_item->getDescription());
    setToolTip(m_item->getAdditionalInfo());
}

void DescBox::setText(QString& heading, QString& text, QString& toolTip)
{
    m_item = nullptr;
    heading.prepend(kHeadingStart);
    m_heading.showText(heading);
    m_text.showText(text);
    setToolTip(toolTip);
}

void DescBox::clear()
{
    m_item = nullptr;
    m_heading.showText(kHeadingStart);
    m_text.showText(QString());
    setToolTip(QString());
}

int DescBox::getCurrentIndex() const
{
    return m_item ? m_item->getBaseIndex() : -1;
}

bool DescBox::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    showPlainToolTip(*static_cast<QHelpEvent*>(event), toolTip(), this);
    return true;
}
