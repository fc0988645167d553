#pragma once

#include "features/description/ScrollingLabel.h"

#include <QPointer>
#include <QWidget>

class GenAPINodeItem;

/// The panel under the feature table. It shows name, type and restricted access of the last selected node and its
/// description; the tool tip shows the range or the current entry. Long texts are scrolled. Lives on the GUI thread.
class DescBox : public QWidget {
    Q_OBJECT

public:
    explicit DescBox(QWidget* parent = nullptr);
    ~DescBox() override;

    /// Reads the item's values from the camera and shows it. Null clears the panel.
    void setText(GenAPINodeItem* item);
    /// Shows these texts. Prepends "Description: " to the caller's `heading`.
    void setText(QString& heading, QString& text, QString& toolTip);
    void clear();

    /// The base index of the displayed item, or -1.
    [[nodiscard]] int getCurrentIndex() const;

protected:
    bool event(QEvent* event) override;

private:
    ScrollingLabel m_heading;
    ScrollingLabel m_text;
    QPointer<GenAPINodeItem> m_item; // not owned
};
