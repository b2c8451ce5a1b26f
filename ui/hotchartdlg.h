#pragma once
// The hot curves' chart: stress against strain for chosen temperatures and
// strain rates, or against strain rate for chosen temperatures and sample
// strains, measured and as the model gives them, over the table of the model's
// errors (the data list "Raw data (csv)" writes).

#include <memory>
#include <vector>

#include "hot/plastic_hot.h"
#include "material/hotview.h"
#include "ui/chartdialog.h"

class QCheckBox;
class QListWidget;
class QRadioButton;

namespace zelko::ui {

class CDIALOG_GRAPH2D : public CChartDialog {
    Q_OBJECT
public:
    explicit CDIALOG_GRAPH2D(std::shared_ptr<const zelko::PLASTIC_HOT> model, QWidget* parent = nullptr);

    // What the lists and switches choose now.
    zelko::HotChartChoice choice() const;
    // Draws the chosen series again (the lists and switches call it).
    void redraw();
    void setAxis(zelko::HotChartAxis axis);
    // Selects exactly these rows of a list: temperatures, rates or strains.
    enum class List { Temperatures, StrainRates, Strains };
    void selectRows(List list, const std::vector<int>& rows);

    CListCtrlExt* errorTable() const { return errors_; }
    // The marks the error table's cells are drawn with.
    const std::vector<zelko::CellMark>& cellMarks() const { return marks_; }

private:
    QWidget* makeChoices();
    void select(List which, const std::vector<int>& rows);  // without drawing
    void fillErrorTable();
    QListWidget* list(List which) const { return lists_[static_cast<std::size_t>(which)]; }

    std::shared_ptr<const zelko::PLASTIC_HOT> model_;
    std::array<QListWidget*, 3> lists_{};
    QRadioButton* againstStrain_ = nullptr;
    QRadioButton* againstRate_ = nullptr;
    QCheckBox* measured_ = nullptr;
    QCheckBox* modelShown_ = nullptr;
    QCheckBox* logRate_ = nullptr;
    CListCtrlExt* errors_ = nullptr;
    std::vector<zelko::CellMark> marks_;
};

}  // namespace zelko::ui
