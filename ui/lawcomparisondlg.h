#pragma once
// Every hardening law fitted to the same test, side by side: a table ranked by
// error with each law's parameters, where it takes the curve at large strains and
// whether the library can hold it, and the laws drawn over the measured curve.
// Choosing a row names the law the tensile screen then fits and keeps.

#include <QDialog>

#include <optional>

#include "cold/lawcomparison.h"
#include "material/tensileview.h"
#include "ui/managertranslate.h"

class QTableWidget;

namespace zelko::ui {
class ChartView;
}

class CLawComparisonDlg : public QDialog, public ManagerTranslate {
    Q_OBJECT
public:
    CLawComparisonDlg(const zelko::LawComparisonResult& result, const zelko::ChartPoints& measured,
                      const QString& measuredName, QWidget* parent = nullptr);

    // The law of the row chosen when the dialog was accepted.
    std::optional<zelko::ColdLawId> chosenLaw() const { return chosen_; }
    QTableWidget* table() const { return table_; }
    zelko::ui::ChartView* chart() const { return chart_; }

    void accept() override;

private:
    std::vector<zelko::LawComparison> rows_;
    std::optional<zelko::ColdLawId> chosen_;
    QTableWidget* table_ = nullptr;
    zelko::ui::ChartView* chart_ = nullptr;
};
