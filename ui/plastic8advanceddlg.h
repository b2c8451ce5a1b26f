#pragma once
// The ductile-fracture criterion the tensile solver job carries, with the
// constant of the criteria that have one.

#include <QDialog>

#include <vector>

#include "cold/plastic_8.h"
#include "ui/managertranslate.h"

class QLineEdit;
class QRadioButton;

class CPlastic8AdvancedDlg : public QDialog, public ManagerTranslate {
    Q_OBJECT
public:
    CPlastic8AdvancedDlg(const zelko::TensileJobSettings& settings, QWidget* parent = nullptr);

    const zelko::TensileJobSettings& settings() const { return settings_; }
    void accept() override;

private:
    void showConstantFields();

    zelko::TensileJobSettings settings_;
    std::vector<QRadioButton*> criteria_;
    QLineEdit* oyaneConstant_ = nullptr;
    QLineEdit* riceTraceyConstant_ = nullptr;
};
