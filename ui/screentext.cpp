#include "ui/screentext.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QTableWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QWidget>

#include "base/numbers.h"
#include "base/textfile.h"

namespace zelko::ui {

QString fieldText(double value) { return numberText("%.15g", value); }

std::optional<double> fieldNumber(const QString& text)
{
    double value = 0.0;
    if (parseNumberField(text.trimmed().toStdU16String(), value) != NumberField::Finite)
        return std::nullopt;
    return value;
}

QString numberText(const char* format, double value)
{
    return QString::fromStdString(formatText(format, value));
}

QList<QPointF> pointList(const ChartPoints& points)
{
    QList<QPointF> list;
    list.reserve(static_cast<qsizetype>(points.size()));
    for (std::size_t i = 0; i < points.size(); ++i)
        list.append(QPointF(points.x[i], points.y[i]));
    return list;
}

QDialogButtonBox* okCancelButtons(QDialog* dialog)
{
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, dialog);
    buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("OK"));
    buttons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("Cancel"));
    for (QAbstractButton* button : buttons->buttons())
        static_cast<QPushButton*>(button)->setAutoDefault(false);
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    return buttons;
}

int setUpPointList(QTableWidget* list)
{
    const int rowHeight = list->fontMetrics().height() + 8;
    list->verticalHeader()->hide();
    list->verticalHeader()->setDefaultSectionSize(rowHeight);
    list->setSelectionBehavior(QAbstractItemView::SelectRows);
    return rowHeight;
}

void refuseField(QWidget* parent, QWidget* field)
{
    QMessageBox::warning(parent, QStringLiteral("ZELKO_MAT"), QStringLiteral("Please enter a number."));
    if (field)
        field->setFocus();
}

}  // namespace zelko::ui
