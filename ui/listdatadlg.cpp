#include "ui/listdatadlg.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QTableWidget>
#include <QVBoxLayout>

#include "ui/screentext.h"

using namespace zelko;

namespace {

QString propertyLabel(int property)
{
    switch (property) {
    case 0: return QStringLiteral("Young modulus [MPa]");
    case 1: return QStringLiteral("Poisson ratio");
    case 2: return QStringLiteral("Density [kg/m^3]");
    default: return QStringLiteral("Coefficient of thermal expansion");
    }
}

}  // namespace

CDlgListData::CDlgListData(int property, PropertyTable table, const ChemicalComposition& composition,
                           QWidget* parent)
    : QDialog(parent), property_(property), table_(std::move(table)), composition_(composition)
{
    setObjectName(QStringLiteral("CDlgListData"));
    setWindowTitle(QStringLiteral("List data"));
    method_ = new QComboBox(this);
    method_->setObjectName(QStringLiteral("method"));
    if (property_ == 0)
        method_->addItem(QStringLiteral("Tselikov"));
    method_->setCurrentIndex(-1);
    connect(method_, &QComboBox::activated, this, &CDlgListData::runMethod);

    list_ = new QTableWidget(0, 3, this);
    list_->setHorizontalHeaderLabels({QStringLiteral("Id"), QStringLiteral("Temperature"), propertyLabel(property_)});
    list_->setColumnWidth(0, 60);
    list_->setColumnWidth(1, 120);
    list_->horizontalHeader()->setStretchLastSection(true);
    const int rowHeight = zelko::ui::setUpPointList(list_);
    list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list_->setShowGrid(true);
    // Room for the property's label in full beside the two narrow columns.
    list_->setMinimumSize(60 + 120 + fontMetrics().horizontalAdvance(propertyLabel(property_)) + 48,
                          15 * rowHeight);

    auto* top = new QHBoxLayout;
    top->addWidget(new QLabel(QStringLiteral("Method"), this));
    top->addWidget(method_, 1);
    auto* buttons = zelko::ui::okCancelButtons(this);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(list_);
    layout->addWidget(buttons);
    showTable();
}

void CDlgListData::runMethod(int index)
{
    if (property_ != 0 || index != 0)
        return;
    const ModulusEstimate estimate = tselikovYoungsModulus(composition_);
    if (!estimate.ok) {
        QMessageBox::warning(this, windowTitle(), zelko::ui::fromUtf8(estimate.message));
        return;
    }
    table_ = estimate.table;
    method_->setCurrentIndex(0);
    showTable();
}

void CDlgListData::showTable()
{
    list_->setRowCount(static_cast<int>(table_.size()));
    for (int row = 0; row < list_->rowCount(); ++row) {
        const TablePoint& point = table_[static_cast<std::size_t>(row)];
        list_->setItem(row, 0, new QTableWidgetItem(QString::number(row + 1)));
        list_->setItem(row, 1, new QTableWidgetItem(zelko::ui::numberText("%g", point.temperature)));
        list_->setItem(row, 2, new QTableWidgetItem(zelko::ui::numberText("%g", point.value)));
    }
}
