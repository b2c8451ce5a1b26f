#pragma once
// The thermal information screen: conductivity and volumetric heat capacity
// against temperature, edited point by point, from presets or a JMatPro export.

#include <QDialog>

#include "base/tablepoint.h"
#include "material/thermaltables.h"
#include "ui/managertranslate.h"

class QLineEdit;
class QTableWidget;

class CHeatDlg : public QDialog, public ManagerTranslate {
    Q_OBJECT
public:
    CHeatDlg(zelko::PropertyTable conductivity, zelko::PropertyTable heatCapacity, QWidget* parent = nullptr);

    const zelko::PropertyTable& conductivity() const { return tables_[0]; }
    const zelko::PropertyTable& heatCapacity() const { return tables_[1]; }

    // The import of "Open data file" once a file is chosen; false when refused.
    bool importDataFile(const QString& path);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    struct Side {
        QTableWidget* list = nullptr;
        QLineEdit* temperature = nullptr;
        QLineEdit* value = nullptr;
    };
    QWidget* makeSide(int which, const QString& title, const QString& valueTitle);
    void edit(int which, int command);
    void takeGrid(int which);
    void redraw(int which, const char* format);
    void redrawAll() { redraw(0, "%.7f"), redraw(1, "%.7f"); }
    void chooseDataFile();

    zelko::PropertyTable tables_[2];
    Side sides_[2];
    QString lastFolder_;
};
