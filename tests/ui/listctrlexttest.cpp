// The data-entry grid driven as a user drives it: double clicks, typed keys,
// the clipboard and dropped files.

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileInfo>
#include <QHeaderView>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QScrollBar>
#include <QShortcut>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QToolTip>
#include <QVBoxLayout>

#include <memory>

#include "ui/inplaceedit.h"
#include "ui/listctrlext.h"

using zelko::ui::CInPlaceEdit;
using zelko::ui::CListCtrlExt;

class ListCtrlExtTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void integerColumnCoercesTypedText_data();
    void integerColumnCoercesTypedText();
    void escapeKeepsThePreviousText();
    void losingTheFocusKeepsTheEdit();
    void narrowColumnsAreNotEdited();
    void editorLiesOverTheCell();
    void editStartScrollsTheCellIntoView();
    void longTextWidensTheEditorUpToTheRightEdge();
    void editorKeysNeverReachTheDialog();
    void editBoxAloneKeepsItsKeys();
    void pasteWritesFromTheCurrentCell();
    void pasteRefusesTooManyRows();
    void copyAndSelectAll();
    void dropOfATextFilePastesIt();
    void dropOfAnotherFileOnlyTellsWhy();
    void tooltipFollowsClippedCells();

private:
    // A grid of rows x columns 60 px wide inside a shown, active dialog with a
    // default OK button, as the data-entry screens hold it.
    CListCtrlExt* makeGrid(int rows, int columns);
    // Without a window manager (xvfb) a window may never become active; the
    // focus rules tested here hold within the window all the same.
    void showDialog();
    QPoint cellCentre(int row, int column) const;
    // Double clicks the cell; the editor that opened, or null.
    CInPlaceEdit* doubleClick(int row, int column);
    void typeInto(CInPlaceEdit* editor, const QString& text, Qt::Key end);
    QMessageBox* messageBox() const;
    void dropFile(const QString& path, int row, int column);
    // A pointer move over the viewport with no button down.
    void hover(QPoint at);

    std::unique_ptr<QDialog> dialog_;
    CListCtrlExt* grid_ = nullptr;
    QDialogButtonBox* buttons_ = nullptr;
};

void ListCtrlExtTest::init()
{
    dialog_ = std::make_unique<QDialog>();
    grid_ = nullptr;
}

void ListCtrlExtTest::cleanup()
{
    dialog_.reset();
}

CListCtrlExt* ListCtrlExtTest::makeGrid(int rows, int columns)
{
    auto* layout = new QVBoxLayout(dialog_.get());
    grid_ = new CListCtrlExt(rows, columns, dialog_.get());
    for (int c = 0; c < columns; ++c)
        grid_->setColumnWidth(c, 60);
    buttons_ = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, dialog_.get());
    buttons_->button(QDialogButtonBox::Ok)->setDefault(true);
    connect(buttons_, &QDialogButtonBox::accepted, dialog_.get(), &QDialog::accept);
    connect(buttons_, &QDialogButtonBox::rejected, dialog_.get(), &QDialog::reject);
    layout->addWidget(grid_);
    layout->addWidget(buttons_);
    dialog_->resize(320, 240);
    showDialog();
    grid_->setFocus();
    return grid_;
}

void ListCtrlExtTest::showDialog()
{
    dialog_->show();
    dialog_->activateWindow();
    if (!QTest::qWaitForWindowActive(dialog_.get()))
        qWarning("the dialog did not become active");
}

QPoint ListCtrlExtTest::cellCentre(int row, int column) const
{
    return grid_->visualRect(grid_->model()->index(row, column)).center();
}

CInPlaceEdit* ListCtrlExtTest::doubleClick(int row, int column)
{
    // A view edits on a double click only where the button went down first.
    QTest::mouseClick(grid_->viewport(), Qt::LeftButton, {}, cellCentre(row, column));
    QTest::mouseDClick(grid_->viewport(), Qt::LeftButton, {}, cellCentre(row, column));
    return grid_->inPlaceEdit();
}

void ListCtrlExtTest::typeInto(CInPlaceEdit* editor, const QString& text, Qt::Key end)
{
    QTest::keyClicks(editor, text);
    QTest::keyClick(editor, end);
    // Return ends the edit by a queued call.
    QTRY_VERIFY(grid_->inPlaceEdit() == nullptr);
}

QMessageBox* ListCtrlExtTest::messageBox() const
{
    return grid_->findChild<QMessageBox*>();
}

void ListCtrlExtTest::hover(QPoint at)
{
    QMouseEvent move(QEvent::MouseMove, at, grid_->viewport()->mapToGlobal(at), Qt::NoButton, Qt::NoButton, {});
    QApplication::sendEvent(grid_->viewport(), &move);
}

void ListCtrlExtTest::dropFile(const QString& path, int row, int column)
{
    QMimeData mime;
    mime.setUrls({QUrl::fromLocalFile(path)});
    const QPointF at = cellCentre(row, column);
    QDragEnterEvent enter(at.toPoint(), Qt::CopyAction, &mime, Qt::LeftButton, {});
    QApplication::sendEvent(grid_->viewport(), &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(at, Qt::CopyAction, &mime, Qt::LeftButton, {});
    QApplication::sendEvent(grid_->viewport(), &drop);
    QVERIFY(drop.isAccepted());
}

void ListCtrlExtTest::integerColumnCoercesTypedText_data()
{
    QTest::addColumn<bool>("integerOnly");
    QTest::addColumn<bool>("realOnly");
    QTest::addColumn<bool>("negativesAllowed");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("stored");
    QTest::newRow("integer -12") << true << false << false << "-12" << "12";
    QTest::newRow("integer abc") << true << false << false << "abc" << "0";
    QTest::newRow("integer -12 signed") << true << false << true << "-12" << "-12";
    QTest::newRow("real -0.5") << false << true << false << "-0.5" << "0.5";
    QTest::newRow("real 1e3") << false << true << false << "1e3" << "1000";
    QTest::newRow("text") << false << false << false << "-1e3 x" << "-1e3 x";
}

void ListCtrlExtTest::integerColumnCoercesTypedText()
{
    QFETCH(bool, integerOnly);
    QFETCH(bool, realOnly);
    QFETCH(bool, negativesAllowed);
    QFETCH(QString, typed);
    QFETCH(QString, stored);
    makeGrid(3, 3);
    grid_->setIntegerOnly(integerOnly);
    grid_->setRealOnly(realOnly);
    grid_->setNegativesAllowed(negativesAllowed);
    QSignalSpy edited(grid_, &CListCtrlExt::contentEdited);

    CInPlaceEdit* editor = doubleClick(1, 2);
    QVERIFY(editor != nullptr);
    QCOMPARE(editor->row(), 1);
    QCOMPARE(editor->column(), 2);
    typeInto(editor, typed, Qt::Key_Return);
    QCOMPARE(grid_->cellText(1, 2), stored);
    QCOMPARE(edited.count(), 1);
    QCOMPARE(grid_->cellText(1, 1), QString());
}

void ListCtrlExtTest::escapeKeepsThePreviousText()
{
    makeGrid(3, 3);
    grid_->setRealOnly(true);
    grid_->setItem(0, 1, new QTableWidgetItem(QStringLiteral("7.5")));
    QSignalSpy edited(grid_, &CListCtrlExt::contentEdited);

    CInPlaceEdit* editor = doubleClick(0, 1);
    QVERIFY(editor != nullptr);
    QCOMPARE(editor->initialText(), QStringLiteral("7.5"));
    QPointer<CInPlaceEdit> watch(editor);
    typeInto(editor, QStringLiteral("99"), Qt::Key_Escape);
    QCOMPARE(grid_->cellText(0, 1), QStringLiteral("7.5"));
    QCOMPARE(edited.count(), 0);
    QVERIFY(watch.isNull() || watch->cancelled());
    QVERIFY(dialog_->isVisible());

    // the same text typed again is no change either
    editor = doubleClick(0, 1);
    typeInto(editor, QStringLiteral("7.5"), Qt::Key_Return);
    QCOMPARE(edited.count(), 0);
}

void ListCtrlExtTest::losingTheFocusKeepsTheEdit()
{
    makeGrid(3, 3);
    grid_->setIntegerOnly(true);
    grid_->setNegativesAllowed(false);
    CInPlaceEdit* editor = doubleClick(2, 0);
    QVERIFY(editor != nullptr);
    QTest::keyClicks(editor, QStringLiteral("-4"));
    buttons_->button(QDialogButtonBox::Cancel)->setFocus();
    QTRY_VERIFY(grid_->inPlaceEdit() == nullptr);
    QCOMPARE(grid_->cellText(2, 0), QStringLiteral("4"));
}

void ListCtrlExtTest::narrowColumnsAreNotEdited()
{
    makeGrid(2, 4);
    grid_->setColumnWidth(1, 4);
    grid_->setColumnWidth(2, 5);
    QCOMPARE(grid_->columnWidth(1), 4);
    QVERIFY(!grid_->editCell(0, 1));
    QVERIFY(grid_->inPlaceEdit() == nullptr);
    // F2 on the narrow column's cell opens nothing either
    grid_->setCurrentCell(0, 1);
    QTest::keyClick(grid_, Qt::Key_F2);
    QVERIFY(grid_->inPlaceEdit() == nullptr);

    QVERIFY(grid_->editCell(0, 2));
    QVERIFY(grid_->inPlaceEdit() != nullptr);
    QCOMPARE(grid_->inPlaceEdit()->column(), 2);
    QTest::keyClick(grid_->inPlaceEdit(), Qt::Key_Escape);
    QTRY_VERIFY(grid_->inPlaceEdit() == nullptr);

    // no column 4, no row 2, no negative cell
    QVERIFY(!grid_->editCell(0, 4));
    QVERIFY(!grid_->editCell(2, 0));
    QVERIFY(!grid_->editCell(-1, 0));
    QVERIFY(grid_->inPlaceEdit() == nullptr);
}

void ListCtrlExtTest::editorLiesOverTheCell()
{
    makeGrid(3, 3);
    grid_->setColumnAlignment(1, Qt::AlignRight);
    grid_->setItem(1, 1, new QTableWidgetItem(QStringLiteral("150.25")));
    QCOMPARE(grid_->item(1, 1)->textAlignment() & Qt::AlignHorizontal_Mask, 0);
    grid_->setColumnAlignment(1, Qt::AlignRight);
    QCOMPARE(grid_->item(1, 1)->textAlignment() & Qt::AlignHorizontal_Mask, int(Qt::AlignRight));
    QCOMPARE(grid_->model()->headerData(1, Qt::Horizontal).toString(), QStringLiteral("2"));

    CInPlaceEdit* editor = doubleClick(1, 1);
    QVERIFY(editor != nullptr);
    QCOMPARE(editor->geometry(), grid_->visualRect(grid_->model()->index(1, 1)));
    QCOMPARE(editor->alignment() & Qt::AlignHorizontal_Mask, Qt::Alignment(Qt::AlignRight));
    QCOMPARE(editor->font(), grid_->font());
    QVERIFY(editor->hasFocus());
    QCOMPARE(editor->selectedText(), QStringLiteral("150.25"));

    if (const QByteArray folder = qgetenv("ZELKO_GRID_SNAPSHOTS"); !folder.isEmpty()) {
        QVERIFY(dialog_->grab().save(QString::fromLocal8Bit(folder) + QStringLiteral("/grid-editor.png")));
        QTest::keyClicks(editor, QStringLiteral("a text much longer than its cell"));
        QVERIFY(dialog_->grab().save(QString::fromLocal8Bit(folder) + QStringLiteral("/grid-widened.png")));
    }

    // the default column alignment is the left
    QTest::keyClick(editor, Qt::Key_Escape);
    QTRY_VERIFY(grid_->inPlaceEdit() == nullptr);
    QVERIFY(grid_->editCell(1, 0));
    QCOMPARE(grid_->inPlaceEdit()->alignment() & Qt::AlignHorizontal_Mask, Qt::Alignment(Qt::AlignLeft));
}

void ListCtrlExtTest::editStartScrollsTheCellIntoView()
{
    makeGrid(40, 12);
    QCOMPARE(grid_->horizontalScrollBar()->value(), 0);
    QVERIFY(grid_->editCell(35, 11));
    CInPlaceEdit* editor = grid_->inPlaceEdit();
    QVERIFY(editor != nullptr);
    QVERIFY(grid_->horizontalScrollBar()->value() > 0);
    QVERIFY(grid_->verticalScrollBar()->value() > 0);
    QVERIFY(grid_->viewport()->rect().contains(editor->geometry()));
    QCOMPARE(editor->geometry(), grid_->visualRect(grid_->model()->index(35, 11)));
    QTest::keyClick(editor, Qt::Key_Escape);
    QTRY_VERIFY(grid_->inPlaceEdit() == nullptr);

    // an edit the owner starts on a cell that is not the current one scrolls too
    grid_->scrollToTop();
    grid_->horizontalScrollBar()->setValue(0);
    const QModelIndex far = grid_->model()->index(30, 10);
    grid_->edit(far);
    QVERIFY(grid_->inPlaceEdit() != nullptr);
    QVERIFY(grid_->currentIndex() != far);
    QVERIFY(grid_->viewport()->rect().contains(grid_->visualRect(far)));
    QTest::keyClick(grid_->inPlaceEdit(), Qt::Key_Escape);
    QTRY_VERIFY(grid_->inPlaceEdit() == nullptr);

    // a column wider than the list: the box ends at the list's right edge
    grid_->setColumnWidth(4, 2000);
    QVERIFY(grid_->editCell(3, 4));
    const QRect box = grid_->inPlaceEdit()->geometry();
    QCOMPARE(box.left(), grid_->visualRect(grid_->model()->index(3, 4)).left());
    QCOMPARE(box.right(), grid_->viewport()->width() - 1);
}

void ListCtrlExtTest::longTextWidensTheEditorUpToTheRightEdge()
{
    makeGrid(2, 3);
    CInPlaceEdit* editor = doubleClick(0, 0);
    QVERIFY(editor != nullptr);
    const QRect cell = editor->geometry();

    // short text: the box stays the cell's
    QTest::keyClicks(editor, QStringLiteral("12"));
    QCOMPARE(editor->geometry(), cell);

    // longer: text width plus the margin, still starting at the cell
    const QString longer = QStringLiteral("123456789012");
    editor->clear();
    QTest::keyClicks(editor, longer);
    const int wanted = editor->fontMetrics().horizontalAdvance(longer) + CInPlaceEdit::kTextMargin;
    QVERIFY2(wanted > cell.width() && cell.x() + wanted < grid_->viewport()->width(), "pick a text that fits");
    QCOMPARE(editor->x(), cell.x());
    QCOMPARE(editor->width(), wanted);
    QCOMPARE(editor->height(), cell.height());

    // far too long: up to the viewport's right edge, no further
    QTest::keyClicks(editor, QString(200, QLatin1Char('W')));
    QCOMPARE(editor->x(), cell.x());
    QCOMPARE(editor->geometry().right(), grid_->viewport()->width() - 1);

    // the view laying its editors out again keeps the widened box
    grid_->resize(grid_->width() + 1, grid_->height());
    QTRY_COMPARE(editor->geometry().right(), grid_->viewport()->width() - 1);
}

void ListCtrlExtTest::editorKeysNeverReachTheDialog()
{
    makeGrid(3, 3);
    QSignalSpy accepted(dialog_.get(), &QDialog::accepted);
    QSignalSpy rejected(dialog_.get(), &QDialog::rejected);
    auto* ctrlShortcut = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_J), dialog_.get());
    auto* deleteShortcut = new QShortcut(QKeySequence(Qt::Key_Delete), dialog_.get());
    QSignalSpy ctrlFired(ctrlShortcut, &QShortcut::activated);
    QSignalSpy deleteFired(deleteShortcut, &QShortcut::activated);

    CInPlaceEdit* editor = doubleClick(0, 0);
    QVERIFY(editor != nullptr);
    QTest::keyClicks(editor, QStringLiteral("abc"));
    QTest::keyClick(editor, Qt::Key_Home);
    QTest::keyClick(editor, Qt::Key_Delete);
    QCOMPARE(editor->text(), QStringLiteral("bc"));
    QTest::keyClick(editor, Qt::Key_J, Qt::ControlModifier);
    QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(editor->selectedText(), QStringLiteral("bc"));
    QCOMPARE(ctrlFired.count(), 0);
    QCOMPARE(deleteFired.count(), 0);

    typeInto(editor, QStringLiteral("x"), Qt::Key_Return);
    QCOMPARE(grid_->cellText(0, 0), QStringLiteral("x"));
    editor = doubleClick(0, 1);
    typeInto(editor, QStringLiteral("y"), Qt::Key_Escape);
    QCOMPARE(grid_->cellText(0, 1), QString());

    QCOMPARE(accepted.count(), 0);
    QCOMPARE(rejected.count(), 0);
    QVERIFY(dialog_->isVisible());
    QVERIFY(grid_->hasFocus());
}

void ListCtrlExtTest::editBoxAloneKeepsItsKeys()
{
    // The box keeps Return and Escape itself, whoever its parent is.
    auto* layout = new QVBoxLayout(dialog_.get());
    auto* edit = new CInPlaceEdit(0, 0, dialog_.get());
    auto* ok = new QPushButton(QStringLiteral("OK"), dialog_.get());
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, dialog_.get(), &QDialog::accept);
    layout->addWidget(edit);
    layout->addWidget(ok);
    QSignalSpy accepted(dialog_.get(), &QDialog::accepted);
    QSignalSpy rejected(dialog_.get(), &QDialog::rejected);
    showDialog();
    edit->setFocus();
    edit->setInitialText(QStringLiteral("12"));
    QCOMPARE(edit->selectedText(), QStringLiteral("12"));
    QTest::keyClick(edit, Qt::Key_Return);
    QTest::keyClick(edit, Qt::Key_Enter);
    QTest::keyClick(edit, Qt::Key_Escape);
    QCOMPARE(accepted.count(), 0);
    QCOMPARE(rejected.count(), 0);
    QVERIFY(dialog_->isVisible());
}

void ListCtrlExtTest::pasteWritesFromTheCurrentCell()
{
    makeGrid(2, 4);
    grid_->setRealOnly(true);
    grid_->setNegativesAllowed(false);
    grid_->setColumnWidth(2, 0);  // a hidden column takes no field
    grid_->setItem(1, 1, new QTableWidgetItem(QStringLiteral("old")));
    auto* locked = new QTableWidgetItem(QStringLiteral("locked"));
    locked->setFlags(locked->flags() & ~Qt::ItemIsEditable);
    grid_->setItem(1, 3, locked);
    grid_->setCurrentCell(1, 1);
    QSignalSpy edited(grid_, &CListCtrlExt::contentEdited);

    QGuiApplication::clipboard()->setText(QStringLiteral("Strain\tStress\n-0,5\t1e3\textra\n\t7\n"));
    QTest::keyClick(grid_, Qt::Key_V, Qt::ControlModifier);

    QCOMPARE(edited.count(), 1);
    QCOMPARE(grid_->rowCount(), 3);
    QCOMPARE(grid_->cellText(1, 1), QStringLiteral("0.5"));
    QCOMPARE(grid_->cellText(1, 2), QString());
    QCOMPARE(grid_->cellText(1, 3), QStringLiteral("locked"));
    QCOMPARE(grid_->cellText(2, 1), QString());
    QCOMPARE(grid_->cellText(2, 3), QStringLiteral("7"));
    QCOMPARE(grid_->cellText(0, 0), QString());

    // text without a table changes nothing
    QVERIFY(!grid_->pasteText(QStringLiteral("\n\n")));
    QCOMPARE(edited.count(), 1);
    QCOMPARE(grid_->rowCount(), 3);
}

void ListCtrlExtTest::pasteRefusesTooManyRows()
{
    makeGrid(2, 2);
    grid_->setItem(0, 0, new QTableWidgetItem(QStringLiteral("kept")));
    QSignalSpy edited(grid_, &CListCtrlExt::contentEdited);
    QString text;
    for (std::size_t i = 0; i <= zelko::kMaxTableRows; ++i)
        text += QStringLiteral("1\n");
    QVERIFY(!grid_->pasteText(text));
    QCOMPARE(grid_->rowCount(), 2);
    QCOMPARE(grid_->cellText(0, 0), QStringLiteral("kept"));
    QCOMPARE(edited.count(), 0);
    QVERIFY(messageBox() != nullptr);
    QVERIFY(messageBox()->text().contains(QStringLiteral("more than 100000 rows")));
}

void ListCtrlExtTest::copyAndSelectAll()
{
    makeGrid(3, 3);
    const char* texts[3][3] = {{"a", "2", "c"}, {"1", "", "3"}, {"x\ty", "5", "6"}};
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            if (*texts[r][c])
                grid_->setItem(r, c, new QTableWidgetItem(QString::fromUtf8(texts[r][c])));

    // nothing selected: the clipboard keeps what it had
    QGuiApplication::clipboard()->setText(QStringLiteral("before"));
    grid_->clearSelection();
    QTest::keyClick(grid_, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("before"));

    grid_->setRangeSelected(QTableWidgetSelectionRange(0, 1, 1, 2), true);
    QTest::keyClick(grid_, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("2\tc\n\t3\n"));

    QTest::keyClick(grid_, Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(grid_->selectionModel()->selectedIndexes().size(), 9);
    QTest::keyClick(grid_, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("a\t2\tc\n1\t\t3\n\"x\ty\"\t5\t6\n"));

    // what was copied pastes back the same
    grid_->clearContents();
    grid_->setCurrentCell(0, 0);
    QTest::keyClick(grid_, Qt::Key_V, Qt::ControlModifier);
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            QCOMPARE(grid_->cellText(r, c), QString::fromUtf8(texts[r][c]));
}

void ListCtrlExtTest::dropOfATextFilePastesIt()
{
    makeGrid(2, 2);
    grid_->setIntegerOnly(true);
    grid_->setNegativesAllowed(false);
    QSignalSpy edited(grid_, &CListCtrlExt::contentEdited);
    QTemporaryDir folder;
    QVERIFY(folder.isValid());
    const QString path = folder.filePath(QStringLiteral("curve.CSV"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("T [\xC2\xB0" "C];n\r\n-20;3\r\n40;abc\r\n");
    file.close();

    dropFile(path, 1, 0);
    QVERIFY(messageBox() == nullptr);
    QCOMPARE(edited.count(), 1);
    QCOMPARE(grid_->rowCount(), 3);
    QCOMPARE(grid_->cellText(1, 0), QStringLiteral("20"));
    QCOMPARE(grid_->cellText(1, 1), QStringLiteral("3"));
    QCOMPARE(grid_->cellText(2, 0), QStringLiteral("40"));
    QCOMPARE(grid_->cellText(2, 1), QStringLiteral("0"));
}

void ListCtrlExtTest::dropOfAnotherFileOnlyTellsWhy()
{
    QTemporaryDir folder;
    QVERIFY(folder.isValid());
    const QString picture = folder.filePath(QStringLiteral("chart.png"));
    const QString large = folder.filePath(QStringLiteral("large.txt"));
    QFile file(picture);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("1\t2\n");
    file.close();
    QFile big(large);
    QVERIFY(big.open(QIODevice::WriteOnly));
    QVERIFY(big.resize(CListCtrlExt::kMaxDroppedFileBytes + 1));
    big.close();

    struct Case {
        QString path;
        QString why;
    };
    const Case cases[] = {
        {picture, QStringLiteral("only .csv and .txt files")},
        {folder.filePath(QStringLiteral("missing.txt")), QStringLiteral("cannot open the file")},
        {large, QStringLiteral("file too large")},
        {folder.path() + QStringLiteral("/empty.csv"), QStringLiteral("holds no table")},
    };
    QFile empty(cases[3].path);
    QVERIFY(empty.open(QIODevice::WriteOnly));
    empty.close();

    for (const Case& c : cases) {
        init();
        makeGrid(2, 2);
        grid_->setItem(0, 0, new QTableWidgetItem(QStringLiteral("kept")));
        QSignalSpy edited(grid_, &CListCtrlExt::contentEdited);
        dropFile(c.path, 0, 0);
        QVERIFY2(messageBox() != nullptr, qPrintable(c.path));
        QVERIFY2(messageBox()->text().contains(c.why), qPrintable(messageBox()->text()));
        QVERIFY(messageBox()->text().contains(QFileInfo(c.path).fileName()));
        QCOMPARE(grid_->cellText(0, 0), QStringLiteral("kept"));
        QCOMPARE(grid_->rowCount(), 2);
        QCOMPARE(edited.count(), 0);
    }
}

void ListCtrlExtTest::tooltipFollowsClippedCells()
{
    makeGrid(3, 2);
    grid_->setItem(0, 0, new QTableWidgetItem(QStringLiteral("a text far wider than sixty pixels")));
    grid_->setItem(0, 1, new QTableWidgetItem(QStringLiteral("1.5")));
    hover(cellCentre(0, 0));
    QVERIFY(!grid_->tooltipShown());  // not enabled yet

    grid_->setTooltipsEnabled(true);
    QVERIFY(grid_->tooltipsEnabled());
    hover(cellCentre(0, 0) + QPoint(1, 0));
    QVERIFY(grid_->tooltipShown());
    QCOMPARE(grid_->tooltipRow(), 0);
    QCOMPARE(grid_->tooltipColumn(), 0);
    QCOMPARE(QToolTip::text(), QStringLiteral("a text far wider than sixty pixels"));

    // a text that fits shows no tooltip
    hover(cellCentre(0, 1));
    QVERIFY(!grid_->tooltipShown());
    QCOMPARE(grid_->tooltipColumn(), 1);

    // below the last row: no cell
    hover(cellCentre(0, 0));
    QVERIFY(grid_->tooltipShown());
    hover(QPoint(5, grid_->viewport()->height() - 2));
    QVERIFY(!grid_->tooltipShown());
    QCOMPARE(grid_->tooltipRow(), -1);

    // leaving the list hides it, by the leave or by the check of the timer
    hover(cellCentre(0, 0));
    QVERIFY(grid_->tooltipShown());
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(grid_->viewport(), &leave);
    QVERIFY(!grid_->tooltipShown());
    hover(cellCentre(0, 0));
    QVERIFY(grid_->tooltipShown());
    QCursor::setPos(dialog_->mapToGlobal(QPoint(-50, -50)));
    QTRY_VERIFY(!grid_->tooltipShown());
    QCOMPARE(grid_->tooltipRow(), -1);
}

QTEST_MAIN(ListCtrlExtTest)
#include "listctrlexttest.moc"
