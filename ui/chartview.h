#pragma once
// The chart of the chart screens, usable inside any dialog: line series of
// measured and model curves over two titled axes, styled by the named
// appearances and palettes, zoomed with the wheel or a dragged rectangle and
// reset by a double click, Home or its context menu; a corner label reads out
// the value under the pointer as "x = %g, y = %g".

#include <QChartView>
#include <QColor>
#include <QImage>
#include <QList>
#include <QPointF>
#include <QString>

#include <optional>
#include <utility>
#include <vector>

class QAction;
class QLabel;
class QAbstractAxis;
class QXYSeries;

namespace zelko::ui {

enum class SeriesRole {
    Measured,  // a thin line, with markers while the points are few
    Model,     // a solid line
};

struct ChartSeries {
    QString name;
    QList<QPointF> points;
    SeriesRole role = SeriesRole::Measured;
};

struct AxisRange {
    double min = 0.0;
    double max = 1.0;
    friend bool operator==(const AxisRange&, const AxisRange&) = default;
};

class ChartView : public QChartView {
    Q_OBJECT
public:
    explicit ChartView(QWidget* parent = nullptr);
    ~ChartView() override;

    void setAxisTitles(const QString& x, const QString& y);
    QString xTitle() const;
    QString yTitle() const;

    // Series share a colour when they share a name (a measured curve and its
    // model), else take the palette's next colour and, beyond it, the extra ones.
    int addSeries(const ChartSeries& series);
    int addSeries(const QString& name, const QList<QPointF>& points, SeriesRole role);
    void clearSeries();
    int seriesCount() const { return static_cast<int>(data_.size()); }
    const ChartSeries& seriesData(int index) const { return data_.at(static_cast<std::size_t>(index)); }
    // The series as drawn (on a logarithmic axis without its points at x <= 0).
    QXYSeries* drawnSeries(int index) const;

    // The logarithmic X axis leaves out points at x <= 0.
    void setLogarithmicX(bool on);
    bool logarithmicX() const { return logX_; }
    // Fixed ranges; automatic ones (from the data) until set and after clearing.
    void setXRange(double min, double max);
    void setYRange(double min, double max);
    void clearRanges();
    // The ranges shown now, zoom included.
    AxisRange xRange() const;
    AxisRange yRange() const;

    // By the names of the lists (appearanceNames(), paletteNames()); false and
    // nothing changed for a name that is not there. Redrawn at once.
    bool setAppearanceName(const QString& name);
    bool setPaletteName(const QString& name);
    QString appearanceName() const { return appearance_; }
    QString paletteName() const { return palette_; }
    // Colours for series beyond the palette's.
    void setExtraColours(std::vector<QColor> colours);

    void setLegendVisible(bool visible);
    bool legendVisible() const;

    // Zooms about a point of the widget (factor > 1 zooms in); resetZoom shows
    // the whole ranges again.
    void zoomAt(double factor, QPointF widgetPosition);
    void resetZoom();
    // The value at a point of the widget; nothing outside the plot area.
    std::optional<QPointF> valueAt(QPointF widgetPosition) const;
    // The readout's text, empty while it is hidden.
    QString readout() const;
    // The context menu's command (the owner translates its text).
    QAction* resetZoomAction() const { return resetZoomAction_; }

    // The chart drawn at size, without readout or rubber band.
    QImage grabImage(QSize size);

protected:
    void wheelEvent(QWheelEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void replaceXAxis();
    void fillSeries(int index);
    void colourSeries();
    void styleAxis(QAbstractAxis* axis);
    // Whether a point can be drawn on the axes shown.
    bool shown(QPointF p) const;
    AxisRange extent(bool alongX) const;
    // The whole ranges: fixed, or from the data with round ends.
    AxisRange homeX() const;
    AxisRange homeY() const;
    void showHome();
    void showReadout(QPointF widgetPosition);
    void placeReadout();
    QPointF toChart(QPointF widgetPosition) const;

    std::vector<ChartSeries> data_;
    std::vector<QXYSeries*> drawn_;
    QAbstractAxis* xAxis_ = nullptr;
    QAbstractAxis* yAxis_ = nullptr;
    bool logX_ = false;
    std::optional<AxisRange> fixedX_;
    std::optional<AxisRange> fixedY_;
    QString appearance_;
    QString palette_;
    QList<QColor> paletteColours_;
    std::vector<QColor> extraColours_;
    QLabel* readout_ = nullptr;
    QAction* resetZoomAction_ = nullptr;
};

}  // namespace zelko::ui
