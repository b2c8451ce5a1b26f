#pragma once
// The short-lived edit box over a grid cell. It keeps the keys the dialog around
// the grid would otherwise take (Return, Escape, Delete, every Ctrl key) and
// widens to the right as the text outgrows it, never past the list's client area.

#include <QLineEdit>

namespace zelko::ui {

class CInPlaceEdit : public QLineEdit {
    Q_OBJECT
public:
    // parent is the list's viewport, whose width bounds the box.
    CInPlaceEdit(int row, int column, QWidget* parent);

    int row() const { return row_; }
    int column() const { return column_; }
    // The cell's text when editing began.
    const QString& initialText() const { return initialText_; }
    void setInitialText(const QString& text);
    // Escape pressed: the edit ends without a text.
    void cancel() { cancelled_ = true; }
    bool cancelled() const { return cancelled_; }

    // The width the text has asked for (0 while it fits the cell); the grid lays the
    // box out with it, clipped, whenever the view moves the box.
    int wantedWidth() const { return wantedWidth_; }

    // Gap kept between the text and the box's right edge before it widens.
    static constexpr int kTextMargin = 5;

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void widenForText();

    int row_;
    int column_;
    QString initialText_;
    bool cancelled_ = false;
    int wantedWidth_ = 0;
};

}  // namespace zelko::ui
