#pragma once
// The peak and steady-state screen of the hot data set: a row per temperature
// and strain rate with the peak, half-softening and steady values of its
// measured curve, the chosen rows' curves with those points marked (or the peak
// stress against strain rate, a line per temperature), and the table as CSV.
// Nothing here changes the material.

#include <QDialog>

#include <memory>

#include "hot/plastic_micros.h"
#include "ui/managertranslate.h"

class QComboBox;
class QTableWidget;

namespace zelko::ui {
class ChartView;
}

class CDIALOG_HOT_MICROS : public QDialog, public ManagerTranslate {
    Q_OBJECT
public:
    explicit CDIALOG_HOT_MICROS(const zelko::HotDataSet& dataSet, QWidget* parent = nullptr);

    enum View { FlowCurves = 0, PeakAgainstRate = 1 };

    const zelko::PLASTIC_MICROS& model() const { return *model_; }
    QTableWidget* table() const { return table_; }
    zelko::ui::ChartView* chart() const { return chart_; }
    QComboBox* viewChoice() const { return view_; }
    // The row's cell: [temperature][rate] of the model.
    std::pair<std::size_t, std::size_t> cellOfRow(int row) const;

    // "Export CSV...": asks for the file, then saves.
    void exportCsv();
    // The table as the export writes it; a file already there is replaced whole or
    // kept as it was, and a failure is said in a message. False when not saved.
    bool saveCsv(const QString& path);

private:
    void showChart();
    void showCurves();
    void showPeaks();

    std::shared_ptr<zelko::PLASTIC_MICROS> model_;
    QTableWidget* table_ = nullptr;
    QComboBox* view_ = nullptr;
    zelko::ui::ChartView* chart_ = nullptr;
};
