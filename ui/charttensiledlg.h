#pragma once
// The tensile curve's chart: the measured and fitted curves the tensile screen
// gives, in the Nature palette and appearance with the legend shown.

#include <vector>

#include "ui/chartdialog.h"

namespace zelko::ui {

class CDIALOG_GRAPH_TENSILE : public CChartDialog {
    Q_OBJECT
public:
    CDIALOG_GRAPH_TENSILE(const QString& xTitle, const QString& yTitle, const std::vector<ChartSeries>& series,
                          QWidget* parent = nullptr);

    // Replaces what the chart shows; the style stays as the user chose it.
    void setValues(const QString& xTitle, const QString& yTitle, const std::vector<ChartSeries>& series);
};

}  // namespace zelko::ui
