#pragma once
// The base of the chart screens (caption "Graph"): a menu of exports, the
// appearance and palette galleries and the legend switch over a ChartView, and
// optionally the data list that "Raw data (csv)" writes. Screens built on it put
// their lists and tables beside the chart through bodyLayout().

#include <QDialog>
#include <QString>
#include <QStringList>

#include <vector>

#include "ui/chartview.h"
#include "ui/managertranslate.h"

class QAction;
class QActionGroup;
class QHBoxLayout;
class QMenuBar;

namespace zelko::ui {

class CListCtrlExt;

class CChartDialog : public QDialog, public ManagerTranslate {
    Q_OBJECT
public:
    explicit CChartDialog(QWidget* parent = nullptr);

    // The translation file of the chart screens.
    static QString translationSection() { return QStringLiteral("Graph"); }

    ChartView* chartView() const { return chart_; }
    // The list the CSV export writes (not placed by the dialog; null ends that
    // export without writing).
    void setDataList(CListCtrlExt* list) { dataList_ = list; }
    CListCtrlExt* dataList() const { return dataList_; }

    // The style names as the dialog split them from their lists, and its table
    // of random colours, which colours the series beyond the palette's own.
    const QStringList& appearances() const { return appearances_; }
    const QStringList& palettes() const { return palettes_; }
    const std::vector<QColor>& randomColours() const { return randomColours_; }

    // As the galleries and the legend item do, their menu items checked to
    // match; false and nothing changed for an unknown name.
    bool applyAppearance(const QString& name);
    bool applyPalette(const QString& name);
    void showLegend(bool visible);

    // The File menu's commands.
    void exportImage();
    void exportTecplot();
    void exportCsv();
    // The exports once their path is chosen: the image at the chart's size in
    // the format its extension names (PNG for any other), or a message saying
    // why not; the data list, silently nothing when it cannot be written. A file
    // already there is replaced whole or kept as it was.
    bool saveImage(const QString& path);
    bool saveCsv(const QString& path);

protected:
    // The chart's row: widgets inserted before or after the chart sit beside it.
    QHBoxLayout* bodyLayout() const { return body_; }
    QMenuBar* menuBar() const { return menuBar_; }

private:
    void buildMenu();
    // A save dialog; empty when cancelled. An empty suffix appends none.
    QString askSavePath(const QString& name, const QStringList& filters, const QString& suffix);

    ChartView* chart_ = nullptr;
    CListCtrlExt* dataList_ = nullptr;
    QMenuBar* menuBar_ = nullptr;
    QHBoxLayout* body_ = nullptr;
    QActionGroup* appearanceGroup_ = nullptr;
    QActionGroup* paletteGroup_ = nullptr;
    QAction* legendAction_ = nullptr;
    QStringList appearances_;
    QStringList palettes_;
    std::vector<QColor> randomColours_;
};

}  // namespace zelko::ui
