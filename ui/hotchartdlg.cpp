#include "ui/hotchartdlg.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QRadioButton>
#include <QVBoxLayout>

#include <numeric>

#include "ui/listctrlext.h"
#include "ui/screentext.h"

namespace zelko::ui {

namespace {

QListWidget* valueList(const std::vector<double>& values, QWidget* parent)
{
    auto* list = new QListWidget(parent);
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    for (const double value : values)
        list->addItem(numberText("%g", value));
    list->setMinimumWidth(110);
    return list;
}

std::vector<std::size_t> selectedRows(const QListWidget* list)
{
    std::vector<std::size_t> rows;
    for (int row = 0; row < list->count(); ++row)
        if (list->item(row)->isSelected())
            rows.push_back(static_cast<std::size_t>(row));
    return rows;
}

}  // namespace

CDIALOG_GRAPH2D::CDIALOG_GRAPH2D(std::shared_ptr<const zelko::PLASTIC_HOT> model, QWidget* parent)
    : CChartDialog(parent), model_(std::move(model))
{
    setObjectName(QStringLiteral("CDIALOG_GRAPH2D"));
    applyPalette(QStringLiteral("Nature"));
    applyAppearance(QStringLiteral("Nature"));
    showLegend(true);
    bodyLayout()->insertWidget(0, makeChoices());

    errors_ = new CListCtrlExt(this);
    errors_->setObjectName(QStringLiteral("fitErrors"));
    errors_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    const int rowHeight = setUpPointList(errors_);
    errors_->setMinimumHeight(7 * rowHeight);
    static_cast<QVBoxLayout*>(layout())->addWidget(errors_);
    setDataList(errors_);
    resize(1000, 760);

    // The base translated its menu; the lists and the table came after.
    translateWindow(this, translationSection());
    fillErrorTable();
    // Every temperature at the slowest rate and the middle strain: the family at a glance.
    std::vector<int> everyTemperature(model_->temperatures.size());
    std::iota(everyTemperature.begin(), everyTemperature.end(), 0);
    select(List::Temperatures, everyTemperature);
    select(List::StrainRates, {0});
    select(List::Strains, {static_cast<int>(model_->strains.size() / 2)});
    redraw();
    for (QListWidget* one : lists_)
        connect(one, &QListWidget::itemSelectionChanged, this, &CDIALOG_GRAPH2D::redraw);
}

QWidget* CDIALOG_GRAPH2D::makeChoices()
{
    auto* side = new QWidget(this);
    auto* column = new QVBoxLayout(side);
    column->setContentsMargins(6, 6, 0, 6);

    auto* axis = new QGroupBox(QStringLiteral("Chart"), side);
    againstStrain_ = new QRadioButton(QStringLiteral("Stress - strain"), axis);
    againstStrain_->setObjectName(QStringLiteral("againstStrain"));
    againstRate_ = new QRadioButton(QStringLiteral("Stress - strain rate"), axis);
    againstRate_->setObjectName(QStringLiteral("againstRate"));
    againstStrain_->setChecked(true);
    auto* axisLayout = new QVBoxLayout(axis);
    axisLayout->addWidget(againstStrain_);
    axisLayout->addWidget(againstRate_);
    column->addWidget(axis);
    connect(againstStrain_, &QRadioButton::toggled, this, [this] { redraw(); });

    const auto titled = [&](const QString& title, QListWidget* list, const char* name) {
        list->setObjectName(QString::fromLatin1(name));
        column->addWidget(new QLabel(title, side));
        column->addWidget(list, 1);
        return list;
    };
    lists_[0] = titled(QStringLiteral("Temperature"), valueList(model_->temperatures, side), "temperatures");
    lists_[1] = titled(QStringLiteral("Strain-rate (1/s)"), valueList(model_->strainRates, side), "strainRates");
    lists_[2] = titled(QStringLiteral("Strain (  )"), valueList(model_->strains, side), "strains");

    measured_ = new QCheckBox(QStringLiteral("Measured"), side);
    measured_->setObjectName(QStringLiteral("measured"));
    measured_->setChecked(true);
    modelShown_ = new QCheckBox(QStringLiteral("Model"), side);
    modelShown_->setObjectName(QStringLiteral("model"));
    modelShown_->setChecked(model_->hasLaw());
    modelShown_->setEnabled(model_->hasLaw());
    logRate_ = new QCheckBox(QStringLiteral("Logarithmic strain-rate axis"), side);
    logRate_->setObjectName(QStringLiteral("logRate"));
    logRate_->setChecked(true);
    for (QCheckBox* box : {measured_, modelShown_, logRate_}) {
        column->addWidget(box);
        connect(box, &QCheckBox::toggled, this, [this] { redraw(); });
    }
    return side;
}

zelko::HotChartChoice CDIALOG_GRAPH2D::choice() const
{
    zelko::HotChartChoice chosen;
    const bool strain = againstStrain_->isChecked();
    chosen.axis = strain ? zelko::HotChartAxis::Strain : zelko::HotChartAxis::StrainRate;
    chosen.temperatures = selectedRows(list(List::Temperatures));
    chosen.others = selectedRows(list(strain ? List::StrainRates : List::Strains));
    chosen.measured = measured_->isChecked();
    chosen.model = modelShown_->isChecked();
    return chosen;
}

void CDIALOG_GRAPH2D::setAxis(zelko::HotChartAxis axis)
{
    (axis == zelko::HotChartAxis::Strain ? againstStrain_ : againstRate_)->setChecked(true);
}

void CDIALOG_GRAPH2D::selectRows(List which, const std::vector<int>& rows)
{
    select(which, rows);
    redraw();
}

void CDIALOG_GRAPH2D::select(List which, const std::vector<int>& rows)
{
    QListWidget* one = list(which);
    const QSignalBlocker quiet(one);
    one->clearSelection();
    for (const int row : rows)
        if (row >= 0 && row < one->count())
            one->item(row)->setSelected(true);
}

void CDIALOG_GRAPH2D::redraw()
{
    const zelko::HotChartChoice chosen = choice();
    const bool strain = chosen.axis == zelko::HotChartAxis::Strain;
    list(List::StrainRates)->setEnabled(strain);
    list(List::Strains)->setEnabled(!strain);
    logRate_->setEnabled(!strain);

    ChartView* chart = chartView();
    chart->clearSeries();
    chart->setLogarithmicX(!strain && logRate_->isChecked());
    chart->setAxisTitles(translateText(strain ? QStringLiteral("Strain") : QStringLiteral("Strain rate (1/s)")),
                         translateText(QStringLiteral("Stress (MPa)")));
    for (const zelko::HotChartSeries& series : zelko::hotChartSeries(*model_, chosen))
        chart->addSeries(fromUtf8(series.name), pointList(series.points),
                         series.model ? SeriesRole::Model : SeriesRole::Measured);
}

void CDIALOG_GRAPH2D::fillErrorTable()
{
    const zelko::FitErrorTable table = zelko::fitErrorTable(*model_);
    errors_->clear();
    errors_->setColumnCount(static_cast<int>(table.headers.size()));
    errors_->setRowCount(static_cast<int>(table.rows.size()));
    QStringList headers;
    for (const std::string& header : table.headers)
        headers << translateText(fromUtf8(header));
    errors_->setHorizontalHeaderLabels(headers);
    for (std::size_t r = 0; r < table.rows.size(); ++r)
        for (std::size_t c = 0; c < table.rows[r].size(); ++c) {
            QString text = fromUtf8(table.rows[r][c]);
            if (r >= table.dataRows && c == 0)
                text = translateText(text);  // "Mean", "Standard deviation"
            auto* item = new QTableWidgetItem(text);
            item->setTextAlignment(c == 0 ? Qt::AlignLeft | Qt::AlignVCenter : Qt::AlignRight | Qt::AlignVCenter);
            errors_->setItem(static_cast<int>(r), static_cast<int>(c), item);
        }
    marks_ = table.marks;
    for (const zelko::CellMark& mark : marks_)
        if (QTableWidgetItem* item = errors_->item(static_cast<int>(mark.row), static_cast<int>(mark.column)))
            item->setBackground(QColor(mark.red, mark.green, mark.blue));
    errors_->resizeColumnsToContents();
}

}  // namespace zelko::ui
