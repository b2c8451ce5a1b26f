#pragma once
// A property table against temperature, with the composition estimate offered
// for Young's modulus.

#include <QDialog>

#include "base/tablepoint.h"
#include "material/tselikov.h"

class QComboBox;
class QTableWidget;

class CDlgListData : public QDialog {
    Q_OBJECT
public:
    // property: 0 Young's modulus, 1 Poisson's ratio, 2 density, 3 expansion.
    CDlgListData(int property, zelko::PropertyTable table, const zelko::ChemicalComposition& composition,
                 QWidget* parent = nullptr);

    const zelko::PropertyTable& table() const { return table_; }
    // Runs the method chosen (only "Tselikov", only for Young's modulus).
    void runMethod(int index);

private:
    void showTable();

    int property_;
    zelko::PropertyTable table_;
    zelko::ChemicalComposition composition_;
    QComboBox* method_ = nullptr;
    QTableWidget* list_ = nullptr;
};
