#pragma once

#include <QMainWindow>
#include <QModelIndex>
#include <QString>
#include <QStringList>

class FeatureView;
class QTableView;
class QWidget;

/// The open editor of the table, or null.
[[nodiscard]] QWidget* openEditor(const QTableView& table);

/// Operates the feature browser of a window by clicks and keys. Features are addressed by name; a folded category is
/// unfolded first. A failing operation ends the program with a message.
class FeatureHand {
public:
    explicit FeatureHand(QMainWindow& window)
        : m_window(window)
    {
    }

    [[nodiscard]] FeatureView& view() const;
    [[nodiscard]] QTableView& table() const;

    /// Clicks a button of the browser's tool bar, given the text of its action.
    void clickTool(const QString& text);

    /// The features that the level shows, in the order of the table.
    [[nodiscard]] QStringList names() const;
    [[nodiscard]] QString shown(const QString& name);

    void clickName(const QString& name);
    /// Returns the editor that is open after the click, or null.
    QWidget* clickValue(const QString& name);

    /// Replaces the text of the editor and presses Enter.
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
