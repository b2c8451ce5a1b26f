#include "ui/hotmicrosdlg.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollBar>
#include <QSplitter>
#include <QTableWidget>
#include <QVBoxLayout>
#include <QXYSeries>

#include <algorithm>
#include <cmath>

#include "base/fileio.h"
#include "base/tabletext.h"
#include "hot/peaksteady.h"
#include "ui/chartview.h"
#include "ui/screentext.h"

using namespace zelko;
using zelko::ui::numberText;

namespace {

// The peak and steady points stand out from the curve's own markers.
constexpr qreal kPointMarkerSize = 11.0;

QString curveName(double temperature, double rate)
{
    return numberText("%g", temperature) + QStringLiteral(" °C, ") + numberText("%g", rate) + QStringLiteral(" /s");
}

}  // namespace

CDIALOG_HOT_MICROS::CDIALOG_HOT_MICROS(const HotDataSet& dataSet, QWidget* parent)
    : QDialog(parent), model_(peakSteadyModel(dataSet))
{
    setObjectName(QStringLiteral("CDIALOG_HOT_MICROS"));
    setWindowTitle(QStringLiteral("Peak and steady state"));
    const TextTable rows = peakSteadyRows(*model_);
    table_ = new QTableWidget(static_cast<int>(rows.size()), static_cast<int>(kPeakSteadyColumns.size()), this);
    table_->setObjectName(QStringLiteral("cells"));
    QStringList headers;
    for (const std::string_view column : kPeakSteadyColumns)
        headers << QString::fromLatin1(column.data(), static_cast<int>(column.size()));
    table_->setHorizontalHeaderLabels(headers);
    zelko::ui::setUpPointList(table_);
    table_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);

    view_ = new QComboBox(this);
    view_->setObjectName(QStringLiteral("view"));
    view_->addItems({QStringLiteral("Flow curves"), QStringLiteral("Peak stress against strain rate")});
    auto* viewLabel = new QLabel(QStringLiteral("Chart:"), this);
    viewLabel->setBuddy(view_);
    chart_ = new zelko::ui::ChartView(this);
    chart_->setObjectName(QStringLiteral("microsChart"));

    auto* exportButton = new QPushButton(QStringLiteral("Export CSV..."), this);
    exportButton->setObjectName(QStringLiteral("exportCsv"));
    exportButton->setAutoDefault(false);
    auto* buttons = new QDialogButtonBox(this);
    QPushButton* close = buttons->addButton(QStringLiteral("Close"), QDialogButtonBox::RejectRole);
    close->setAutoDefault(false);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* chartSide = new QWidget(this);
    auto* chartLayout = new QVBoxLayout(chartSide);
    chartLayout->setContentsMargins(0, 0, 0, 0);
    auto* viewRow = new QHBoxLayout;
    viewRow->addWidget(viewLabel);
    viewRow->addWidget(view_);
    viewRow->addStretch(1);
    chartLayout->addLayout(viewRow);
    chartLayout->addWidget(chart_, 1);
    auto* split = new QSplitter(Qt::Horizontal, this);
    split->addWidget(table_);
    split->addWidget(chartSide);
    split->setStretchFactor(1, 1);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(exportButton);
    bottom->addStretch(1);
    bottom->addWidget(buttons);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(split, 1);
    layout->addLayout(bottom);

    translateWindow(this, QStringLiteral("PlasticHotMicros"));
    // Filled once the translation is loaded: the statuses in the screen's language.
    for (int row = 0; row < table_->rowCount(); ++row) {
        const auto& cells = rows[static_cast<std::size_t>(row)];
        for (int column = 0; column < table_->columnCount(); ++column) {
            QString text = QString::fromStdU16String(cells[static_cast<std::size_t>(column)]);
            const bool status = column + 1 == table_->columnCount();
            auto* item = new QTableWidgetItem(status ? translateText(text) : text);
            item->setTextAlignment(status ? Qt::AlignLeft | Qt::AlignVCenter : Qt::AlignRight | Qt::AlignVCenter);
            table_->setItem(row, column, item);
        }
    }
    table_->resizeColumnsToContents();
    table_->horizontalHeader()->setStretchLastSection(true);

    connect(table_, &QTableWidget::itemSelectionChanged, this, &CDIALOG_HOT_MICROS::showChart);
    connect(view_, &QComboBox::currentIndexChanged, this, &CDIALOG_HOT_MICROS::showChart);
    connect(exportButton, &QPushButton::clicked, this, &CDIALOG_HOT_MICROS::exportCsv);
    if (table_->rowCount() > 0)
        table_->selectRow(0);
    showChart();
    // The table whole (its columns as wide as their texts), the chart in the rest.
    int tableWidth = table_->frameWidth() * 2 + table_->verticalScrollBar()->sizeHint().width();
    for (int column = 0; column < table_->columnCount(); ++column)
        tableWidth += table_->columnWidth(column);
    resize(std::max(1200, tableWidth + 620), 680);
    split->setSizes({tableWidth, width() - tableWidth});
}

std::pair<std::size_t, std::size_t> CDIALOG_HOT_MICROS::cellOfRow(int row) const
{
    const std::size_t rates = model_->strainRates.size();
    const auto index = static_cast<std::size_t>(row);
    return {index / rates, index % rates};
}

void CDIALOG_HOT_MICROS::showChart()
{
    chart_->clearSeries();
    if (view_->currentIndex() == PeakAgainstRate)
        showPeaks();
    else
        showCurves();
}

void CDIALOG_HOT_MICROS::showCurves()
{
    chart_->setLogarithmicX(false);
    chart_->setAxisTitles(translateText(QStringLiteral("Strain")), translateText(QStringLiteral("Stress [MPa]")));
    QList<int> rows;
    for (const QModelIndex& index : table_->selectionModel()->selectedRows())
        rows << index.row();
    std::sort(rows.begin(), rows.end());
    QList<int> marks;
    for (const int row : rows) {
        const auto [t, r] = cellOfRow(row);
        const HotCurve& curve = model_->curve(t, r);
        if (curve.empty())
            continue;
        const QString name = curveName(model_->temperatures[t], model_->strainRates[r]);
        QList<QPointF> points;
        for (const HotCurvePoint& point : curve)
            points << QPointF(point.strain, point.stress);
        chart_->addSeries(name, points, zelko::ui::SeriesRole::Measured);
        const MicrosCell& cell = model_->cells[t][r];
        // Same name, same colour, no legend entry of their own.
        if (std::isfinite(cell.peakStress))
            marks << chart_->addSeries(name, {QPointF(cell.peakStrain, cell.peakStress)}, zelko::ui::SeriesRole::Measured);
        if (std::isfinite(cell.steadyStress)) {
            marks << chart_->addSeries(name, {QPointF(cell.steadyStrain, cell.steadyStress)},
                                       zelko::ui::SeriesRole::Measured);
            chart_->addSeries(name, {QPointF(cell.steadyStrain, cell.steadyStress),
                                     QPointF(curve.back().strain, cell.steadyStress)},
                              zelko::ui::SeriesRole::Model);
        }
    }
    for (const int mark : marks)
        chart_->drawnSeries(mark)->setMarkerSize(kPointMarkerSize);
}

void CDIALOG_HOT_MICROS::showPeaks()
{
    chart_->setLogarithmicX(true);
    chart_->setAxisTitles(translateText(QStringLiteral("Strain rate [1/s]")),
                          translateText(QStringLiteral("Peak stress [MPa]")));
    for (std::size_t t = 0; t < model_->cells.size(); ++t) {
        QList<QPointF> points;
        for (std::size_t r = 0; r < model_->cells[t].size(); ++r)
            if (std::isfinite(model_->cells[t][r].peakStress))
                points << QPointF(model_->strainRates[r], model_->cells[t][r].peakStress);
        if (!points.isEmpty())
            chart_->addSeries(numberText("%g", model_->temperatures[t]) + QStringLiteral(" °C"), points,
                              zelko::ui::SeriesRole::Measured);
    }
}

void CDIALOG_HOT_MICROS::exportCsv()
{
    QFileDialog dialog(this);
    dialog.setObjectName(QStringLiteral("saveDialog"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilters({translateText(QStringLiteral("CSV files (*.csv)"))});
    dialog.setDefaultSuffix(QStringLiteral("csv"));
    dialog.selectFile(QStringLiteral("peak-steady.csv"));
    if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty())
        saveCsv(dialog.selectedFiles().constFirst());
}

bool CDIALOG_HOT_MICROS::saveCsv(const QString& path)
{
    // The headers as the table shows them; the cells as the engine wrote them.
    std::vector<std::u16string> headers;
    for (int column = 0; column < table_->columnCount(); ++column)
        headers.push_back(table_->horizontalHeaderItem(column)->text().toStdU16String());
    TextTable rows = peakSteadyRows(*model_);
    for (auto& row : rows)
        row.back() = translateText(std::u16string_view(row.back()));
    std::string error;
    if (saveFileAtomically(std::filesystem::path(path.toStdU16String()), listExportFile(headers, rows), error))
        return true;
    QMessageBox::warning(this, windowTitle(),
                         translateText(QStringLiteral("The file could not be saved.")) + QLatin1Char('\n') +
                             QDir::toNativeSeparators(path) + QLatin1Char('\n') + QString::fromStdString(error));
    return false;
}
