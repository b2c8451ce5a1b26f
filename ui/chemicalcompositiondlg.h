#pragma once
// The steel's composition for the modulus estimate.

#include <QDialog>

#include <array>

#include "material/tselikov.h"

class QLineEdit;

class CDlgChemicalComposition : public QDialog {
    Q_OBJECT
public:
    explicit CDlgChemicalComposition(const zelko::ChemicalComposition& composition, QWidget* parent = nullptr);

    const zelko::ChemicalComposition& composition() const { return composition_; }
    void accept() override;

private:
    zelko::ChemicalComposition composition_;
    std::array<QLineEdit*, 5> fields_{};
};
