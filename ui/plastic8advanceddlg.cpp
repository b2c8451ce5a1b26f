#include "ui/plastic8advanceddlg.h"

#include <QDialogButtonBox>
#include <QButtonGroup>
#include <QFormLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QVBoxLayout>

#include "ui/screentext.h"

using namespace zelko;

namespace {

constexpr int kOyane = 5;
constexpr int kRiceTracey = 6;

}  // namespace

CPlastic8AdvancedDlg::CPlastic8AdvancedDlg(const TensileJobSettings& settings, QWidget* parent)
    : QDialog(parent), settings_(settings)
{
    setObjectName(QStringLiteral("CPlastic8AdvancedDlg"));
    setWindowTitle(QStringLiteral("Ductile fracture criteria"));
    auto* group = new QGroupBox(QStringLiteral("Ductile fracture criterion"), this);
    auto* choices = new QVBoxLayout(group);
    auto* exclusive = new QButtonGroup(this);
    for (const FractureCriterion& criterion : kFractureCriteria) {
        auto* button = new QRadioButton(QString::fromLatin1(criterion.name), group);
        button->setObjectName(QStringLiteral("criterion%1").arg(criterion.number));
        button->setChecked(criterion.number == settings_.fractureCriterion);
        exclusive->addButton(button);
        choices->addWidget(button);
        criteria_.push_back(button);
        connect(button, &QRadioButton::toggled, this, &CPlastic8AdvancedDlg::showConstantFields);
    }
    if (!exclusive->checkedButton())
        criteria_.front()->setChecked(true);

    const bool oyane = settings_.fractureCriterion == kOyane;
    const bool rice = settings_.fractureCriterion == kRiceTracey;
    oyaneConstant_ = new QLineEdit(zelko::ui::fieldText(oyane ? settings_.fractureConstant : 0.0), this);
    oyaneConstant_->setObjectName(QStringLiteral("oyaneConstant"));
    riceTraceyConstant_ = new QLineEdit(zelko::ui::fieldText(rice ? settings_.fractureConstant : 0.0), this);
    riceTraceyConstant_->setObjectName(QStringLiteral("riceTraceyConstant"));
    auto* constants = new QFormLayout;
    constants->addRow(QStringLiteral("Oyane Constant (c)"), oyaneConstant_);
    constants->addRow(QStringLiteral("Rice & Tracey Constant (A)"), riceTraceyConstant_);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(group);
    layout->addLayout(constants);
    layout->addWidget(zelko::ui::okCancelButtons(this));
    showConstantFields();
    translateWindow(this, QStringLiteral("Plastic8_advanced"));
}

void CPlastic8AdvancedDlg::showConstantFields()
{
    for (std::size_t i = 0; i < criteria_.size(); ++i)
        if (criteria_[i]->isChecked()) {
            oyaneConstant_->setEnabled(kFractureCriteria[i].number == kOyane);
            riceTraceyConstant_->setEnabled(kFractureCriteria[i].number == kRiceTracey);
        }
}

void CPlastic8AdvancedDlg::accept()
{
    TensileJobSettings read = settings_;
    read.fractureConstant = 0.0;
    for (std::size_t i = 0; i < criteria_.size(); ++i)
        if (criteria_[i]->isChecked())
            read.fractureCriterion = kFractureCriteria[i].number;
    QLineEdit* constant = read.fractureCriterion == kOyane        ? oyaneConstant_
                          : read.fractureCriterion == kRiceTracey ? riceTraceyConstant_
                                                                  : nullptr;
    if (constant) {
        const std::optional<double> value = zelko::ui::fieldNumber(constant->text());
        if (!value) {
            zelko::ui::refuseField(this, constant);
            return;
        }
        read.fractureConstant = *value;
    }
    settings_ = read;
    QDialog::accept();
}
