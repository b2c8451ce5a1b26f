#pragma once
// The processing map screen: a sample strain and a contour step chosen, the map
// computed from the hot model off the interface thread, its data file and script
// written to the exchange folder, and gnuplot's drawing of them shown.
// Failures end the drawing silently; the screen stays usable.

#include <QDialog>

#include <filesystem>
#include <memory>

#include "base/environment.h"
#include "hot/plastic_hot.h"
#include "hot/processingmap.h"
#include "ui/managertranslate.h"

class CStaticGNUPlot;
class QLineEdit;
class QListWidget;
class QProgressBar;
class QLabel;
class QPushButton;

namespace zelko::ui {
class BackgroundRun;
}

class CDLG_PROCESSINGMAP : public QDialog, public ManagerTranslate {
    Q_OBJECT
public:
    CDLG_PROCESSINGMAP(const zelko::PLASTIC_HOT& model, const zelko::Environment& environment,
                       QWidget* parent = nullptr);
    ~CDLG_PROCESSINGMAP() override;

    // The screen's commands (tests drive them as the buttons do).
    void draw();
    bool mapRunning() const;
    void cancelMap();

    CStaticGNUPlot* plot() const { return plot_; }
    // The efficiency range of the map drawn, and a word when no contour level falls in it.
    QString note() const;

    void reject() override;

private:
    void finishMap(const std::filesystem::path& script, const zelko::EfficiencyRange& range, double step);
    void setRunning(bool running);

    // The run reads it on its own thread while the screen may be closed.
    std::shared_ptr<const zelko::PLASTIC_HOT> model_;
    zelko::Environment environment_;

    QListWidget* strains_ = nullptr;
    QLineEdit* contourStep_ = nullptr;
    QPushButton* draw_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QPushButton* cancel_ = nullptr;
    CStaticGNUPlot* plot_ = nullptr;
    QLabel* note_ = nullptr;
    zelko::ui::BackgroundRun* run_ = nullptr;
};
