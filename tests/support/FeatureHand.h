#pragma once

#include <QMainWindow>
#include <QModelIndex>
#include <QString>
#include <QStringList>

class FeatureView;
class QTableView;
class QWidget;

/// The editor that is open in the table, null for none.
[[nodiscard]] QWidget* openEditor(const QTableView& table);

/// A user's hand on the feature browser of a window: clicks and keys. Features are called by name; the category that
/// hides one is unfolded first. What does not work ends the program with a message.
class FeatureHand {
public:
    explicit FeatureHand(QMainWindow& window)
        : m_window(window)
    {
    }

    [[nodiscard]] FeatureView& view() const;
    [[nodiscard]] QTableView& table() const;

    /// A button of the browser's tool bar, by the text of its action.
    void clickTool(const QString& text);

    /// Every feature that the level lets through, in the order of the table.
    [[nodiscard]] QStringList names() const;
    [[nodiscard]] QString shown(const QString& name);

    void clickName(const QString& name);
    /// The editor that is open after the click, null for none.
    QWidget* clickValue(const QString& name);

    /// Types the text over what the editor holds, and Enter.
    void type(const QString& name, const QString& text);
    /// Picks an entry of a combo box.
    void choose(const QString& name, const QString& entry);
    /// Presses the button of a command.
    void execute(const QString& name);

private:
    [[nodiscard]] QModelIndex find(const QString& name, int column);
    void click(const QModelIndex& index);
    [[nodiscard]] QWidget* editor() const { return openEditor(table()); }

    QMainWindow& m_window;
};
