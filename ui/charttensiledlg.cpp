#include "ui/charttensiledlg.h"

namespace zelko::ui {

CDIALOG_GRAPH_TENSILE::CDIALOG_GRAPH_TENSILE(const QString& xTitle, const QString& yTitle,
                                             const std::vector<ChartSeries>& series, QWidget* parent)
    : CChartDialog(parent)
{
    setObjectName(QStringLiteral("CDIALOG_GRAPH_TENSILE"));
    applyPalette(QStringLiteral("Nature"));
    applyAppearance(QStringLiteral("Nature"));
    showLegend(true);
    setValues(xTitle, yTitle, series);
}

void CDIALOG_GRAPH_TENSILE::setValues(const QString& xTitle, const QString& yTitle,
                                      const std::vector<ChartSeries>& series)
{
    ChartView* chart = chartView();
    chart->clearSeries();
    chart->setAxisTitles(xTitle, yTitle);
    for (const ChartSeries& one : series)
        chart->addSeries(one);
}

}  // namespace zelko::ui
