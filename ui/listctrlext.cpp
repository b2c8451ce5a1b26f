#include "ui/listctrlext.h"

#include <QClipboard>
#include <QDir>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QStyledItemDelegate>
#include <QToolTip>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "base/fileio.h"
#include "ui/inplaceedit.h"

namespace zelko::ui {

namespace {

const QString kCaption = QStringLiteral("ZELKO_MAT");
// While shown, the tooltip checks this often whether the pointer has left the list.
constexpr int kTooltipCheckMs = 80;

// The first local file among the dropped URLs.
QString droppedFile(const QMimeData* mime)
{
    if (mime == nullptr || !mime->hasUrls())
        return {};
    for (const QUrl& url : mime->urls())
        if (url.isLocalFile())
            return url.toLocalFile();
    return {};
}

}  // namespace

// Makes each cell's editor a CInPlaceEdit laid over the cell and hands what was
// typed back to the list.
class CellEditDelegate : public QStyledItemDelegate {
public:
    explicit CellEditDelegate(CListCtrlExt* list) : QStyledItemDelegate(list), list_(list) {}

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex& index) const override
    {
        auto* edit = new CInPlaceEdit(index.row(), index.column(), parent);
        edit->setFont(list_->font());
        edit->setAlignment(list_->columnAlignment(index.column()) | Qt::AlignVCenter);
        list_->editorCreated(edit);
        return edit;
    }

    void setEditorData(QWidget* editor, const QModelIndex& index) const override
    {
        static_cast<CInPlaceEdit*>(editor)->setInitialText(index.data(Qt::EditRole).toString());
    }

    void setModelData(QWidget* editor, QAbstractItemModel*, const QModelIndex& index) const override
    {
        const auto* edit = static_cast<CInPlaceEdit*>(editor);
        if (!edit->cancelled())
            list_->takeEditedText(index, edit->text());
    }

    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option, const QModelIndex&) const override
    {
        QRect box = option.rect;
        box.setWidth(std::max(box.width(), static_cast<CInPlaceEdit*>(editor)->wantedWidth()));
        box.setRight(std::min(box.right(), editor->parentWidget()->width() - 1));
        editor->setGeometry(box);
    }

protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape)
            if (auto* edit = qobject_cast<CInPlaceEdit*>(object))
                edit->cancel();
        return QStyledItemDelegate::eventFilter(object, event);
    }

private:
    CListCtrlExt* list_;
};

CListCtrlExt::CListCtrlExt(QWidget* parent) : CListCtrlExt(0, 0, parent) {}

CListCtrlExt::CListCtrlExt(int rows, int columns, QWidget* parent) : QTableWidget(rows, columns, parent)
{
    setItemDelegate(new CellEditDelegate(this));
    setEditTriggers(DoubleClicked | EditKeyPressed | AnyKeyPressed);
    setSelectionMode(ExtendedSelection);
    // Dialogs hide a column by making it a few pixels wide; the header must allow it.
    horizontalHeader()->setMinimumSectionSize(0);
    setAcceptDrops(true);
    viewport()->setAcceptDrops(true);
    tooltipTimer_.setInterval(kTooltipCheckMs);
    connect(&tooltipTimer_, &QTimer::timeout, this, &CListCtrlExt::hideTooltipOnceLeft);
}

void CListCtrlExt::setTooltipsEnabled(bool on)
{
    tooltipsEnabled_ = on;
    if (on)
        viewport()->setMouseTracking(true);
    else
        hideTooltip();
}

void CListCtrlExt::setColumnAlignment(int column, Qt::Alignment alignment)
{
    if (column < 0 || column >= columnCount())
        return;
    QTableWidgetItem* header = horizontalHeaderItem(column);
    if (header == nullptr) {
        // keep the number the header shows without an item
        header = new QTableWidgetItem(model()->headerData(column, Qt::Horizontal).toString());
        setHorizontalHeaderItem(column, header);
    }
    header->setTextAlignment(alignment | Qt::AlignVCenter);
    for (int row = 0; row < rowCount(); ++row)
        if (QTableWidgetItem* cell = item(row, column))
            cell->setTextAlignment(alignment | Qt::AlignVCenter);
}

Qt::Alignment CListCtrlExt::columnAlignment(int column) const
{
    const QTableWidgetItem* header = horizontalHeaderItem(column);
    const auto alignment = header ? Qt::Alignment(header->textAlignment()) & Qt::AlignHorizontal_Mask : Qt::Alignment();
    return alignment ? alignment : Qt::AlignLeft;
}

QString CListCtrlExt::cellText(int row, int column) const
{
    const QTableWidgetItem* cell = item(row, column);
    return cell ? cell->text() : QString();
}

bool CListCtrlExt::canEdit(const QModelIndex& index) const
{
    return index.isValid() && !isRowHidden(index.row()) && index.column() < horizontalHeader()->count()
           && !isHiddenColumn(index.column());
}

bool CListCtrlExt::editCell(int row, int column)
{
    const QModelIndex index = model()->index(row, column);
    if (!canEdit(index))
        return false;
    setCurrentIndex(index);
    return edit(index, AllEditTriggers, nullptr);
}

bool CListCtrlExt::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event)
{
    const bool starts = trigger == AllEditTriggers || editTriggers().testFlag(trigger);
    if (starts && index.isValid()) {
        if (!canEdit(index))
            return false;
        hideTooltip();
        scrollTo(index);
    }
    return QTableWidget::edit(index, trigger, event);
}

void CListCtrlExt::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint)
{
    if (editor == editor_)
        editor_ = nullptr;
    QTableWidget::closeEditor(editor, hint);
}

void CListCtrlExt::takeEditedText(const QModelIndex& index, const QString& typed)
{
    const QString text = QString::fromStdU16String(coerceCellText(typed.toStdU16String(), rules_));
    if (writeCell(index.row(), index.column(), text))
        emit contentEdited();
}

bool CListCtrlExt::writeCell(int row, int column, const QString& text)
{
    QTableWidgetItem* cell = item(row, column);
    if (cell == nullptr) {
        if (text.isEmpty())
            return false;
        cell = new QTableWidgetItem(text);
        cell->setTextAlignment(columnAlignment(column) | Qt::AlignVCenter);
        setItem(row, column, cell);
        return true;
    }
    if (cell->text() == text)
        return false;
    cell->setText(text);
    return true;
}

bool CListCtrlExt::pasteText(const QString& text)
{
    const Paste result = pasteTable(text);
    if (result == Paste::TooManyRows)
        showMessage(QStringLiteral("The table has more than %1 rows; nothing was pasted.").arg(kMaxTableRows));
    return result == Paste::Done;
}

CListCtrlExt::Paste CListCtrlExt::pasteTable(const QString& text)
{
    const int startRow = std::max(currentRow(), 0);
    // Fields go to the visible columns from the current one on, as the user sees them.
    std::vector<int> columns;
    for (int column = std::max(currentColumn(), 0); column < columnCount(); ++column)
        if (!isHiddenColumn(column))
            columns.push_back(column);
    if (columns.empty())
        return Paste::Empty;
    const ParsedTable table = parseTabularText(text.toStdU16String(), columns.size());
    if (table.tooManyRows)
        return Paste::TooManyRows;
    if (table.rows.empty())
        return Paste::Empty;

    bool changed = false;
    const int lastRow = startRow + static_cast<int>(table.rows.size());
    if (lastRow > rowCount()) {
        setRowCount(lastRow);
        changed = true;
    }
    for (std::size_t r = 0; r < table.rows.size(); ++r) {
        const int row = startRow + static_cast<int>(r);
        for (std::size_t k = 0; k < table.rows[r].size(); ++k) {
            const int column = columns[k];
            const QTableWidgetItem* cell = item(row, column);
            if (cell != nullptr && !cell->flags().testFlag(Qt::ItemIsEditable))
                continue;
            // An empty field empties the cell rather than typing a 0 into it.
            const std::u16string& field = table.rows[r][k];
            const QString value = field.empty() ? QString() : QString::fromStdU16String(coerceCellText(field, rules_));
            changed = writeCell(row, column, value) || changed;
        }
    }
    if (changed)
        emit contentEdited();
    return Paste::Done;
}

QString CListCtrlExt::selectedText() const
{
    const QModelIndexList indexes = selectedIndexes();
    if (indexes.isEmpty())
        return {};
    int top = indexes.front().row(), bottom = top, left = indexes.front().column(), right = left;
    for (const QModelIndex& index : indexes) {
        top = std::min(top, index.row());
        bottom = std::max(bottom, index.row());
        left = std::min(left, index.column());
        right = std::max(right, index.column());
    }
    TextTable rows(bottom - top + 1, std::vector<std::u16string>(right - left + 1));
    for (const QModelIndex& index : indexes)
        rows[index.row() - top][index.column() - left] = cellText(index.row(), index.column()).toStdU16String();
    return QString::fromStdU16String(tabularText(rows));
}

bool CListCtrlExt::pasteFile(const QString& path)
{
    const QString name = QDir::toNativeSeparators(path);
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix != QLatin1String("csv") && suffix != QLatin1String("txt")) {
        showMessage(QStringLiteral("%1 is not a table of text; only .csv and .txt files can be dropped here.").arg(name));
        return false;
    }
    std::string error;
    const auto bytes = readFileBytes(std::filesystem::path(path.toStdU16String()), error, kMaxDroppedFileBytes);
    if (!bytes) {
        showMessage(QStringLiteral("%1 was not pasted: %2").arg(name, QString::fromStdString(error)));
        return false;
    }
    switch (pasteTable(QString::fromStdU16String(decodeTabularFile(*bytes)))) {
    case Paste::Done:
        return true;
    case Paste::Empty:
        showMessage(QStringLiteral("%1 holds no table to paste.").arg(name));
        return false;
    case Paste::TooManyRows:
        showMessage(QStringLiteral("%1 has more than %2 rows; nothing was pasted.").arg(name).arg(kMaxTableRows));
        return false;
    }
    return false;
}

void CListCtrlExt::dragEnterEvent(QDragEnterEvent* event)
{
    if (droppedFile(event->mimeData()).isEmpty())
        QTableWidget::dragEnterEvent(event);
    else
        event->acceptProposedAction();
}

void CListCtrlExt::dragMoveEvent(QDragMoveEvent* event)
{
    if (droppedFile(event->mimeData()).isEmpty())
        QTableWidget::dragMoveEvent(event);
    else
        event->acceptProposedAction();
}

void CListCtrlExt::dropEvent(QDropEvent* event)
{
    const QString path = droppedFile(event->mimeData());
    if (path.isEmpty()) {
        QTableWidget::dropEvent(event);
        return;
    }
    event->acceptProposedAction();
    // The table lands where the file was let go, else at the current cell.
    const QModelIndex at = indexAt(event->position().toPoint());
    if (at.isValid())
        setCurrentIndex(at);
    pasteFile(path);
}

void CListCtrlExt::showMessage(const QString& text)
{
    // Not modal to the application: the drop that caused it has to return first.
    auto* box = new QMessageBox(QMessageBox::Warning, kCaption, text, QMessageBox::Ok, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

bool CListCtrlExt::event(QEvent* event)
{
    // The grid's own clipboard keys win over the dialog's shortcuts while it has the focus.
    if (event->type() == QEvent::ShortcutOverride) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key == QKeySequence::Paste || key == QKeySequence::Copy || key == QKeySequence::SelectAll) {
            event->accept();
            return true;
        }
    }
    return QTableWidget::event(event);
}

void CListCtrlExt::keyPressEvent(QKeyEvent* event)
{
    if (event == QKeySequence::Paste) {
        pasteText(QGuiApplication::clipboard()->text());
        return;
    }
    if (event == QKeySequence::Copy) {
        // Nothing selected leaves the clipboard as it was.
        if (const QString text = selectedText(); !text.isEmpty())
            QGuiApplication::clipboard()->setText(text);
        return;
    }
    if (event == QKeySequence::SelectAll) {
        selectAll();
        return;
    }
    QTableWidget::keyPressEvent(event);
}

bool CListCtrlExt::viewportEvent(QEvent* event)
{
    if (tooltipsEnabled_) {
        switch (event->type()) {
        case QEvent::MouseMove:
            trackTooltip(static_cast<QMouseEvent*>(event)->position().toPoint());
            break;
        case QEvent::Leave:
            hideTooltip();
            tooltipRow_ = tooltipColumn_ = -1;
            break;
        case QEvent::ToolTip:
            return true;  // the tracking tooltip is the only one
        default:
            break;
        }
    }
    return QTableWidget::viewportEvent(event);
}

void CListCtrlExt::trackTooltip(const QPoint& position)
{
    const QModelIndex index = indexAt(position);
    const int row = index.isValid() ? index.row() : -1;
    const int column = index.isValid() ? index.column() : -1;
    if (row == tooltipRow_ && column == tooltipColumn_)
        return;
    tooltipRow_ = row;
    tooltipColumn_ = column;
    if (!index.isValid()) {
        hideTooltip();
        return;
    }
    const QString text = cellText(row, column);
    const QRect cell = visualRect(index);
    // The style keeps this margin on either side of a cell's text.
    const int margin = style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1;
    if (fontMetrics().horizontalAdvance(text) > cell.width() - 2 * margin) {
        QToolTip::showText(viewport()->mapToGlobal(cell.topLeft()), text, viewport(), cell);
        tooltipShown_ = true;
        tooltipTimer_.start();
    } else {
        hideTooltip();
    }
}

void CListCtrlExt::hideTooltip()
{
    tooltipTimer_.stop();
    if (!tooltipShown_)
        return;
    tooltipShown_ = false;
    QToolTip::hideText();
}

void CListCtrlExt::hideTooltipOnceLeft()
{
    if (viewport()->rect().contains(viewport()->mapFromGlobal(QCursor::pos())))
        return;
    hideTooltip();
    tooltipRow_ = tooltipColumn_ = -1;
}

}  // namespace zelko::ui
