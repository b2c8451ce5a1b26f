#pragma once
// The hot compression test screen: the three value groups that span the data
// set, curves imported from raw text (one cell or several) or from a long CSV,
// a cell shown again as text, and a hot type fitted off the interface thread.
// It edits its own copy of the data set; the view takes the material on OK.

#include <QDialog>

#include <memory>

#include "base/environment.h"
#include "hot/hotdataset.h"
#include "hot/plastic_hot.h"
#include "material/project.h"
#include "ui/managertranslate.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;

namespace zelko::ui {
class BackgroundRun;
}

class CHotCompDlg : public QDialog, public ManagerTranslate {
    Q_OBJECT
public:
    CHotCompDlg(const zelko::Project& material, const zelko::Environment& environment, QWidget* parent = nullptr);
    ~CHotCompDlg() override;

    // The material holding the fitted model, once accepted.
    const zelko::Project& material() const { return material_; }
    const zelko::HotDataSet& dataSet() const { return dataSet_; }

    // The screen's commands (tests drive them as the buttons do).
    void addGroupValue(zelko::HotGroup group);
    void applyGroups();
    void showCurve();
    void importRawData();
    bool importCsv(const QString& path);
    void fit();
    bool fitRunning() const;
    void cancelFit();
    // The model choice, which picks the type it stands for.
    void chooseModel(int index);
    // The curves and the model in the hot chart (modal).
    void showChart();
    // The processing map of the shown model, and the peaks and steady states of the curves (modal).
    void showProcessingMap();
    void showPeakSteady();
    // The parameter screen of Zener-Hollomon or Model 70, as the model choice says;
    // an accepted screen puts its model in the material.
    void editParameters();

    void accept() override;
    void reject() override;

private:
    QWidget* makeGroups();
    QWidget* makeRawData();
    QWidget* makeFitSide();
    void showGroups();
    bool groupsApplied() const;
    // No fit running and the groups applied (applying them when they are not); false after a refusal.
    bool groupsReady();
    void showDataSet();
    zelko::RawCurveLayout layout() const;
    bool readStrainOffset(double& offset);
    zelko::CurveSelection selection() const;
    void finishFit(std::shared_ptr<zelko::PLASTIC_HOT> model, const std::string& report, const std::string& error,
                   bool cancelled);
    void editAdvanced();
    // The model the views show: the fitted one, else the data set alone.
    std::shared_ptr<const zelko::PLASTIC_HOT> shownModel() const;
    // Zener-Hollomon and Model 70 have a parameter screen.
    bool choiceHasParameters() const;
    void takeModel(std::shared_ptr<zelko::PLASTIC_HOT> model, const QString& report);
    void setRunning(bool running);
    void message(const QString& text);

    zelko::Project material_;
    zelko::Environment environment_;
    zelko::HotDataSet dataSet_;
    zelko::HotFitOptions options_;
    std::array<zelko::GroupItems, 3> groups_;  // by HotGroup
    bool hasFit_ = false;  // OK takes a fitted model only

    std::array<QListWidget*, 3> lists_{};
    std::array<QLineEdit*, 3> fields_{};
    QPlainTextEdit* rawText_ = nullptr;
    QCheckBox* numberedLines_ = nullptr;
    QComboBox* columnMode_ = nullptr;
    QCheckBox* negateStrain_ = nullptr;
    QCheckBox* negateStress_ = nullptr;
    QComboBox* measure_ = nullptr;
    QLineEdit* strainOffset_ = nullptr;
    QComboBox* model_ = nullptr;
    QComboBox* type_ = nullptr;
    QPushButton* fit_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QPushButton* stop_ = nullptr;
    QPlainTextEdit* report_ = nullptr;
    QPushButton* ok_ = nullptr;
    QPushButton* chart_ = nullptr;
    QPushButton* parameters_ = nullptr;
    QPushButton* map_ = nullptr;
    QPushButton* peaks_ = nullptr;
    zelko::ui::BackgroundRun* run_ = nullptr;
};
