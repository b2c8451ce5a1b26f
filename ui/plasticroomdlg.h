#pragma once
// The tensile test screen: the measured curve entered, pasted or imported, the
// specimen and units, the points placed on the curve, a hardening law fitted off
// the interface thread, or the tensile solver's job written and its curve read
// back. It edits its own copy of the material; the view takes it on OK.

#include <QDialog>

#include <memory>
#include <optional>

#include "base/environment.h"
#include "cold/coldlaw.h"
#include "cold/coldlaws.h"
#include "cold/plastic_8.h"
#include "material/project.h"
#include "material/tensilechain.h"
#include "material/tensileview.h"
#include "ui/managertranslate.h"

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLabel;
class QListWidget;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QRadioButton;
class QSlider;
class QSpinBox;
class QTimer;

namespace zelko::ui {
class BackgroundRun;
class ChartView;
class CListCtrlExt;
struct ChartSeries;
}  // namespace zelko::ui

class CPlasticRoomDlg : public QDialog, public ManagerTranslate {
    Q_OBJECT
public:
    CPlasticRoomDlg(const zelko::Project& material, const zelko::Environment& environment, QWidget* parent = nullptr);
    ~CPlasticRoomDlg() override;

    // The material with the record (and the law fitted last) once accepted.
    const zelko::Project& material() const { return material_; }
    bool materialChanged() const { return changed_; }

    // The selection handler of the law list (0 is the simulation).
    void chooseLaw(int position);
    // Every law fitted side by side; the one chosen from the table is then fitted and kept.
    void compareLaws();
    // The start point at the 0.2 % offset yield of the entered curve.
    void startAtYield();
    void startNewCurveAtYield();
    void placeStartAtYield();
    bool fitRunning() const;
    void cancelFit();
    // Reads a curve file into the point list; false with a message when it can't.
    bool importCurve(const QString& path);
    // Writes the solver job (and starts the solver) / reads its result back.
    bool writeJob(const QString& jobFile);
    bool readJobResult(const QString& jobFile);

    // What the chart shows, for tests and the chart's own drawing.
    struct Shown {
        zelko::ChartPoints measured;
        zelko::ChartPoints fitted;
        QString fittedName;
    };
    const Shown& shown() const { return shown_; }
    // The record the screen's fields give, entered now; empty with the reason shown when they give none.
    std::shared_ptr<const zelko::RoomOri> enteredRecord();

    void accept() override;
    void reject() override;

private:
    QWidget* makeDataSide();
    QWidget* makeCurveSide();
    QWidget* makeFitSide();
    void showRecord(const zelko::RoomOri& record);
    void showCurve(const zelko::Curve& curve);
    void inputsChanged();
    void showPointHeaders();
    bool enter();
    void placePoint(int index);
    void placeStart(int index);
    std::optional<int> yieldIndex(std::string& error) const;
    void showPlacedPoint();
    void resetPlacedPoints();
    void refreshCurve();
    std::vector<zelko::ui::ChartSeries> chartSeries() const;
    void openChart();
    void finishFit(const zelko::TensileFit& fit);
    void editOptions();
    void editFracture();
    void chooseAndWriteJob();
    void chooseAndReadResult();
    void setRunning(bool running);
    void showStatus(const QString& text, bool problem);
    void keepRecord(std::shared_ptr<zelko::RoomOri> record);
    std::optional<zelko::ColdLawId> selectedLaw() const;
    // What a fit takes from the screen; nothing (and why, shown) when it can't run.
    std::optional<zelko::TensileFitSettings> fitSettings();

    zelko::Project material_;
    zelko::Environment environment_;
    bool changed_ = false;       // the material differs from the one the screen opened on
    bool pendingEdits_ = false;  // fields or points changed since the material took a record
    std::shared_ptr<zelko::RoomOri> entered_;  // the fields entered; empty when they changed since
    std::shared_ptr<const zelko::ColdLaw> law_;
    std::shared_ptr<const zelko::PLASTIC_8> simulation_;
    int startIndex_ = 0;
    bool startAtYieldWhenEntered_ = false;  // a new load or engineering curve
    int neckingIndex_ = -1;  // -1: the maximum engineering stress
    int endIndex_ = -1;      // -1: the last point
    zelko::TensileJobSettings jobSettings_;
    zelko::FitMethod method_ = zelko::FitMethod::Descent;
    QString lastJob_;
    Shown shown_;

    QComboBox* inputKind_ = nullptr;
    zelko::ui::CListCtrlExt* points_ = nullptr;
    QLineEdit* diameter_ = nullptr;
    QLineEdit* gaugeLength_ = nullptr;
    QComboBox* lengthUnit_ = nullptr;
    QComboBox* forceUnit_ = nullptr;
    QButtonGroup* placed_ = nullptr;
    QSlider* slider_ = nullptr;
    QLabel* pointLabel_ = nullptr;
    QSpinBox* start_ = nullptr;
    QPushButton* yieldButton_ = nullptr;
    QButtonGroup* curveForm_ = nullptr;
    QListWidget* laws_ = nullptr;
    QCheckBox* weighted_ = nullptr;
    QCheckBox* neckingConstraint_ = nullptr;
    QPushButton* options_ = nullptr;
    QPushButton* compare_ = nullptr;
    QPushButton* ok_ = nullptr;
    QPushButton* fracture_ = nullptr;
    QPushButton* writeJob_ = nullptr;
    QPushButton* readResult_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QPushButton* cancel_ = nullptr;
    QLabel* status_ = nullptr;
    zelko::ui::ChartView* chart_ = nullptr;
    QTimer* refresh_ = nullptr;
    zelko::ui::BackgroundRun* run_ = nullptr;
};
