#pragma once
// The Zener-Hollomon parameter screen: one row of constants per order (a sample
// strain), typed or fitted to the data set off the interface thread.

#include <QDialog>

#include <memory>

#include "hot/zenerhollomon.h"
#include "ui/managertranslate.h"

class QProgressBar;
class QPushButton;
class QPlainTextEdit;

namespace zelko::ui {

class BackgroundRun;
class CListCtrlExt;

class CDialogZenerHollomon : public QDialog, public ManagerTranslate {
    Q_OBJECT
public:
    explicit CDialogZenerHollomon(const zelko::PLASTIC_Zener_Hollomon& model, QWidget* parent = nullptr);
    ~CDialogZenerHollomon() override;

    const zelko::PLASTIC_Zener_Hollomon& model() const { return model_; }
    CListCtrlExt* grid() const { return grid_; }
    // As the Fit button does; the grid is filled when the fit ends.
    void fit();
    bool fitRunning() const;
    void cancelFit();

    void reject() override;

private:
    void showOrders();
    void cellEdited();
    void setRunning(bool running);

    zelko::PLASTIC_Zener_Hollomon model_;
    CListCtrlExt* grid_ = nullptr;
    QPushButton* fit_ = nullptr;
    QPushButton* stop_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QPlainTextEdit* report_ = nullptr;
    QPushButton* ok_ = nullptr;
    BackgroundRun* run_ = nullptr;
};

}  // namespace zelko::ui
