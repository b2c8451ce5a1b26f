#include "ui/inplaceedit.h"

#include <QKeyEvent>

#include <algorithm>

namespace zelko::ui {

namespace {

// The keys the edit box keeps from the dialog: its default and cancel buttons
// and any shortcut it holds.
bool isEditorKey(const QKeyEvent& key)
{
    switch (key.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Escape:
    case Qt::Key_Delete:
        return true;
    default:
        return key.modifiers().testFlag(Qt::ControlModifier);
    }
}

}  // namespace

CInPlaceEdit::CInPlaceEdit(int row, int column, QWidget* parent) : QLineEdit(parent), row_(row), column_(column)
{
    // The box stands exactly over the cell; a frame would eat the cell's height.
    setFrame(false);
    connect(this, &QLineEdit::textEdited, this, &CInPlaceEdit::widenForText);
}

void CInPlaceEdit::setInitialText(const QString& text)
{
    initialText_ = text;
    setText(text);
    selectAll();
}

bool CInPlaceEdit::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride && isEditorKey(*static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
    }
    return QLineEdit::event(event);
}

void CInPlaceEdit::keyPressEvent(QKeyEvent* event)
{
    QLineEdit::keyPressEvent(event);
    if (isEditorKey(*event))
        event->accept();
}

void CInPlaceEdit::widenForText()
{
    const int needed = fontMetrics().horizontalAdvance(text()) + kTextMargin;
    if (needed <= width())
        return;
    wantedWidth_ = needed;
    const int right = parentWidget() ? parentWidget()->width() : x() + needed;
    resize(std::min(needed, right - x()), height());
}

}  // namespace zelko::ui
