#pragma once
// The elastic properties screen: four constants (or tables) with presets. It
// edits its own values; the caller applies them to a copy of the material.

#include <QDialog>

#include <array>

#include "material/elasticscreen.h"
#include "material/tselikov.h"
#include "ui/managertranslate.h"

class QComboBox;
class QLineEdit;
class QPushButton;

class CElasticDlg : public QDialog, public ManagerTranslate {
    Q_OBJECT
public:
    CElasticDlg(const zelko::ELASTIC& elastic, const zelko::ChemicalComposition& composition,
                QWidget* parent = nullptr);

    // The screen's values once accepted (fields read back into them).
    const zelko::ElasticScreenValues& values() const { return values_; }

    void accept() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void showForm(int property);
    void showValues();
    void openList(int property);

    zelko::ElasticScreenValues values_;
    zelko::ChemicalComposition composition_;
    std::array<QLineEdit*, zelko::kElasticPropertyCount> valueFields_{};
    std::array<QComboBox*, zelko::kElasticPropertyCount> formSelectors_{};
    std::array<QPushButton*, zelko::kElasticPropertyCount> listButtons_{};
};
