#pragma once
// The data-entry grid of the screens. Every cell is edited in place through a
// CInPlaceEdit; what is typed is coerced as the list's numeric modes say. Clipped
// cell texts show in a tooltip; spreadsheet text can be pasted or dropped as a
// .csv/.txt file, and the selection copied as tab-separated text.

#include <QPointer>
#include <QTableWidget>
#include <QTimer>

#include "base/gridtext.h"
#include "ui/inplaceedit.h"

namespace zelko::ui {

class CListCtrlExt : public QTableWidget {
    Q_OBJECT
public:
    explicit CListCtrlExt(QWidget* parent = nullptr);
    CListCtrlExt(int rows, int columns, QWidget* parent = nullptr);

    // A column this wide or narrower hides a value the dialog keeps; it is not edited.
    static constexpr int kNarrowestHiddenColumn = 4;
    // Dropped files beyond this size are refused unread.
    static constexpr qint64 kMaxDroppedFileBytes = 10 * 1024 * 1024;

    void setIntegerOnly(bool on) { rules_.integerOnly = on; }
    bool integerOnly() const { return rules_.integerOnly; }
    void setRealOnly(bool on) { rules_.realOnly = on; }
    bool realOnly() const { return rules_.realOnly; }
    void setNegativesAllowed(bool on) { rules_.negativesAllowed = on; }
    bool negativesAllowed() const { return rules_.negativesAllowed; }
    void setTooltipsEnabled(bool on);
    bool tooltipsEnabled() const { return tooltipsEnabled_; }
    const CellRules& cellRules() const { return rules_; }

    // The cell under the pointer (-1 when none) and whether its tooltip shows.
    int tooltipRow() const { return tooltipRow_; }
    int tooltipColumn() const { return tooltipColumn_; }
    bool tooltipShown() const { return tooltipShown_; }

    // The column's alignment, which its cells and the edit box take.
    void setColumnAlignment(int column, Qt::Alignment alignment);
    Qt::Alignment columnAlignment(int column) const;

    using QTableWidget::edit;
    // Starts editing a cell as a double click does; false when it cannot be edited.
    bool editCell(int row, int column);
    // The edit box while an edit runs, else null.
    CInPlaceEdit* inPlaceEdit() const { return editor_; }
    QString cellText(int row, int column) const;

    // Tabular text written from the current cell on (rows added as needed), each
    // field coerced as typed text is; false and the grid unchanged when refused.
    bool pasteText(const QString& text);
    // The selection's bounding rectangle as tab-separated rows.
    QString selectedText() const;
    // Pastes a .csv or .txt file's text; any other file, or one that cannot be
    // read, gives a message and leaves the grid as it was.
    bool pasteFile(const QString& path);

signals:
    // Cells changed by an edit, a paste or a drop (not by the owner's own writes).
    void contentEdited();

protected:
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;

private:
    friend class CellEditDelegate;
    void editorCreated(CInPlaceEdit* editor) { editor_ = editor; }
    // The end of an edit that was not cancelled.
    void takeEditedText(const QModelIndex& index, const QString& typed);
    // Writes text, creating the cell with its column's alignment; true if it changed.
    bool writeCell(int row, int column, const QString& text);
    bool isHiddenColumn(int column) const { return columnWidth(column) <= kNarrowestHiddenColumn; }
    bool canEdit(const QModelIndex& index) const;
    enum class Paste { Done, Empty, TooManyRows };
    Paste pasteTable(const QString& text);

    void trackTooltip(const QPoint& position);
    void hideTooltip();
    void hideTooltipOnceLeft();
    void showMessage(const QString& text);

    CellRules rules_{};
    QPointer<CInPlaceEdit> editor_;
    bool tooltipsEnabled_ = false;
    int tooltipRow_ = -1;
    int tooltipColumn_ = -1;
    bool tooltipShown_ = false;
    QTimer tooltipTimer_;
};

}  // namespace zelko::ui
