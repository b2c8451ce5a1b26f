#pragma once
// The numerical options of a cold fit: one row per parameter of the chosen law
// (start value, bounds, held fixed) and the descent's settings. It edits its own
// copy of the settings; the tensile screen takes them back on OK.

#include <QDialog>

#include <vector>

#include "cold/coldlaws.h"
#include "numerics/fitmethod.h"
#include "ui/managertranslate.h"

class QCheckBox;
class QComboBox;
class QLineEdit;

namespace zelko::ui {
class CListCtrlExt;
}

// The settings the screen edits, as the record holds them.
struct ColdFitOptions {
    std::vector<zelko::ParameterBound> bounds;
    std::uint32_t fixedParameters = 0;
    bool automaticStart = true;
    double targetError = 1.0;
    int maxIterations = 10000;
    double neckingPenaltyWeight = 1.0;
    zelko::FitMethod method = zelko::FitMethod::Descent;  // the screen's, not the record's

    // The record's settings, with the law's own bound table when the record has none for it.
    static ColdFitOptions of(const zelko::RoomOri& record, zelko::ColdLawId law, zelko::FitMethod method);
    void applyTo(zelko::RoomOri& record) const;
};

class CPlasticRoomAdvDlg : public QDialog, public ManagerTranslate {
    Q_OBJECT
public:
    CPlasticRoomAdvDlg(zelko::ColdLawId law, ColdFitOptions options, QWidget* parent = nullptr);

    const ColdFitOptions& options() const { return options_; }
    zelko::ui::CListCtrlExt* parameterList() const { return list_; }

    // Reads the fields back; a field that is no number, or bounds that hold no
    // value, keep the dialog open with a message.
    void accept() override;

private:
    ColdFitOptions options_;
    std::vector<const char*> names_;
    zelko::ui::CListCtrlExt* list_ = nullptr;
    QCheckBox* automaticStart_ = nullptr;
    QLineEdit* targetError_ = nullptr;
    QLineEdit* maxIterations_ = nullptr;
    QLineEdit* neckingWeight_ = nullptr;
    QComboBox* method_ = nullptr;
};
