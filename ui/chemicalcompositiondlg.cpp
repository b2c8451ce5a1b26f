#include "ui/chemicalcompositiondlg.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QVBoxLayout>

#include "ui/screentext.h"

using namespace zelko;

namespace {

std::array<double*, 5> contents(ChemicalComposition& c)
{
    return {&c.carbon, &c.manganese, &c.silicon, &c.phosphorus, &c.sulfur};
}

}  // namespace

CDlgChemicalComposition::CDlgChemicalComposition(const ChemicalComposition& composition, QWidget* parent)
    : QDialog(parent), composition_(composition)
{
    setObjectName(QStringLiteral("CDlgChemicalComposition"));
    setWindowTitle(QStringLiteral("Chemical composition"));
    auto* materialClass = new QComboBox(this);
    materialClass->addItem(QStringLiteral("Steel"));
    auto* classForm = new QFormLayout;
    classForm->addRow(QStringLiteral("Material"), materialClass);

    static const char* const labels[5] = {"Carbon content [wt%]", "Manganese content [wt%]", "Silicon content [wt%]",
                                          "Phosphorus content [wt%]", "Sulfur content [wt%]"};
    auto* group = new QGroupBox(QStringLiteral("Chemical contents"), this);
    auto* form = new QFormLayout(group);
    const auto values = contents(composition_);
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        fields_[i] = new QLineEdit(zelko::ui::fieldText(*values[i]), group);
        fields_[i]->setObjectName(QStringLiteral("content%1").arg(i));
        form->addRow(QString::fromUtf8(labels[i]), fields_[i]);
    }

    auto* buttons = zelko::ui::okCancelButtons(this);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(classForm);
    layout->addWidget(group);
    layout->addWidget(buttons);
}

void CDlgChemicalComposition::accept()
{
    ChemicalComposition typed;
    const auto targets = contents(typed);
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        const auto number = zelko::ui::fieldNumber(fields_[i]->text());
        if (!number) {
            zelko::ui::refuseField(this, fields_[i]);
            return;
        }
        *targets[i] = *number;
    }
    composition_ = typed;
    QDialog::accept();
}
