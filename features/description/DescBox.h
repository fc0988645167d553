#pragma once

#include "features/description/ScrollingLabel.h"

#include <QPointer>
#include <QWidget>

class GenAPINodeItem;

/// The panel under the feature table: name, type and restricted access of the node chosen last, its description, and
/// as tool tip its range or current entry. Long texts are scrolled. Lives on the GUI thread.
class DescBox : public QWidget {
    Q_OBJECT

public:
    explicit DescBox(QWidget* parent = nullptr);
    ~DescBox() override;

    /// Reads the item's values from the camera and shows it. Null clears the panel.
    void setText(GenAPINodeItem* item);
    /// Shows these texts. `heading` gets "Description: " in front, in place.
    void setText(QString& heading, QString& text, QString& toolTip);
    void clear();

    /// The base index of the item shown, -1 for none.
    [[nodiscard]] int getCurrentIndex() const;

protected:
    bool event(QEvent* event) override;

private:
    ScrollingLabel m_heading;
    ScrollingLabel m_text;
    QPointer<GenAPINodeItem> m_item; // not owned
};
