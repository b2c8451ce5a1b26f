#include "ui/chartview.h"

#include <QAction>
#include <QChart>
#include <QContextMenuEvent>
#include <QGraphicsLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLegend>
#include <QLegendMarker>
#include <QLineSeries>
#include <QLogValueAxis>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QValueAxis>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <limits>

#include "base/textfile.h"
#include "ui/chartstyles.h"

namespace zelko::ui {

namespace {

// A measured curve with more points than this is a line; markers would merge.
constexpr int kMostMarkedPoints = 100;
constexpr double kMeasuredPenWidth = 1.5;
constexpr double kModelPenWidth = 2.4;
constexpr qreal kMarkerSize = 5.0;
// More legend entries than this do not fit in one row below the plot.
constexpr qsizetype kLegendEntriesBelow = 4;
// One notch of the wheel zooms by this factor.
constexpr double kWheelZoom = 1.25;
// About this many intervals between the ticks of an axis.
constexpr double kTickIntervals = 5.0;

bool finite(QPointF p) { return std::isfinite(p.x()) && std::isfinite(p.y()); }

// 1, 2, 2.5 or 5 times a power of ten, at least raw.
double roundStep(double raw)
{
    if (!(raw > 0.0) || !std::isfinite(raw))
        return 1.0;
    const double power = std::pow(10.0, std::floor(std::log10(raw)));
    const double fraction = raw / power;
    const double nice = fraction <= 1.0 ? 1.0 : fraction <= 2.0 ? 2.0 : fraction <= 2.5 ? 2.5 : fraction <= 5.0 ? 5.0 : 10.0;
    return nice * power;
}

// The data's extent widened to round ticks; a single value gets room around it.
AxisRange roundRange(double low, double high)
{
    if (!(low <= high) || !std::isfinite(low) || !std::isfinite(high))
        return {};
    if (high - low <= std::abs(high) * 1e-12) {
        const double pad = low == 0.0 ? 1.0 : std::abs(low) * 0.1;
        low -= pad;
        high += pad;
    }
    const double step = roundStep((high - low) / kTickIntervals);
    return {std::floor(low / step) * step, std::ceil(high / step) * step};
}

constexpr double kDecadeMargin = 1e-9;

// Whole decades around the positive extent.
AxisRange decadeRange(double low, double high)
{
    if (!(low > 0.0) || !(low <= high) || !std::isfinite(high))
        return {1.0, 10.0};
    AxisRange range{std::pow(10.0, std::floor(std::log10(low))), std::pow(10.0, std::ceil(std::log10(high)))};
    if (range.max <= range.min)
        range.max = range.min * 10.0;
    // The axis labels a decade only inside its range; a hair wider keeps both ends labelled.
    range.min *= 1.0 - kDecadeMargin;
    range.max *= 1.0 + kDecadeMargin;
    return range;
}

AxisRange rangeOf(const QAbstractAxis* axis)
{
    if (const auto* value = qobject_cast<const QValueAxis*>(axis))
        return {value->min(), value->max()};
    if (const auto* log = qobject_cast<const QLogValueAxis*>(axis))
        return {log->min(), log->max()};
    return {};
}

void setRangeOf(QAbstractAxis* axis, AxisRange range)
{
    // The interval before the range: a wide range drawn at a narrow range's
    // interval would lay out thousands of ticks (seconds) before the update.
    if (auto* value = qobject_cast<QValueAxis*>(axis); value && range.max > range.min)
        value->setTickInterval(roundStep((range.max - range.min) / kTickIntervals));
    axis->setRange(range.min, range.max);
}

// Round ticks at any zoom: an interval of a round step, anchored at zero.
QValueAxis* makeValueAxis(QObject* parent)
{
    auto* axis = new QValueAxis(parent);
    axis->setLabelFormat(QStringLiteral("%g"));
    axis->setTickType(QValueAxis::TicksDynamic);
    axis->setTickAnchor(0.0);
    QObject::connect(axis, &QValueAxis::rangeChanged, axis, [axis](qreal min, qreal max) {
        axis->setTickInterval(roundStep((max - min) / kTickIntervals));
    });
    return axis;
}

}  // namespace

ChartView::ChartView(QWidget* parent) : QChartView(parent)
{
    setObjectName(QStringLiteral("chartView"));
    auto* theChart = new QChart;
    theChart->setBackgroundRoundness(0);
    theChart->setPlotAreaBackgroundVisible(true);
    theChart->legend()->setAlignment(Qt::AlignBottom);
    theChart->legend()->setMarkerShape(QLegend::MarkerShapeFromSeries);
    theChart->layout()->setContentsMargins(4, 4, 4, 4);
    setChart(theChart);
    setRenderHint(QPainter::Antialiasing);
    setRubberBand(QChartView::RectangleRubberBand);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    viewport()->setMouseTracking(true);

    xAxis_ = makeValueAxis(this);
    yAxis_ = makeValueAxis(this);
    for (QAbstractAxis* axis : {xAxis_, yAxis_}) {
        QFont font = axis->titleFont();
        font.setBold(true);
        axis->setTitleFont(font);
    }
    theChart->addAxis(xAxis_, Qt::AlignBottom);
    theChart->addAxis(yAxis_, Qt::AlignLeft);

    resetZoomAction_ = new QAction(QStringLiteral("Reset zoom"), this);
    resetZoomAction_->setObjectName(QStringLiteral("resetZoom"));
    connect(resetZoomAction_, &QAction::triggered, this, &ChartView::resetZoom);

    readout_ = new QLabel(viewport());
    readout_->setObjectName(QStringLiteral("readout"));
    readout_->setAttribute(Qt::WA_TransparentForMouseEvents);
    readout_->setMargin(3);
    readout_->hide();
    connect(theChart, &QChart::plotAreaChanged, this, [this] { placeReadout(); });

    setAppearanceName(appearanceNames().constFirst());
    setPaletteName(paletteNames().constFirst());
    showHome();
}

ChartView::~ChartView() = default;

void ChartView::setAxisTitles(const QString& x, const QString& y)
{
    xAxis_->setTitleText(x);
    yAxis_->setTitleText(y);
}

QString ChartView::xTitle() const { return xAxis_->titleText(); }

QString ChartView::yTitle() const { return yAxis_->titleText(); }

int ChartView::addSeries(const ChartSeries& series)
{
    data_.push_back(series);
    auto* line = new QLineSeries;
    line->setName(series.name);
    chart()->addSeries(line);
    line->attachAxis(xAxis_);
    line->attachAxis(yAxis_);
    drawn_.push_back(line);
    const int index = seriesCount() - 1;
    fillSeries(index);
    colourSeries();
    showHome();
    return index;
}

int ChartView::addSeries(const QString& name, const QList<QPointF>& points, SeriesRole role)
{
    return addSeries(ChartSeries{name, points, role});
}

void ChartView::clearSeries()
{
    chart()->removeAllSeries();
    drawn_.clear();
    data_.clear();
    showHome();
}

QXYSeries* ChartView::drawnSeries(int index) const { return drawn_.at(static_cast<std::size_t>(index)); }

void ChartView::setLogarithmicX(bool on)
{
    if (on == logX_)
        return;
    logX_ = on;
    // A logarithmic axis never meets the points it cannot show: they go before
    // it comes and return after it has gone.
    if (!on)
        replaceXAxis();
    for (int i = 0; i < seriesCount(); ++i)
        fillSeries(i);
    if (on)
        replaceXAxis();
    showHome();
}

void ChartView::replaceXAxis()
{
    const QString title = xAxis_->titleText();
    const QFont titleFont = xAxis_->titleFont();
    xAxis_->hide();
    chart()->removeAxis(xAxis_);
    xAxis_->deleteLater();
    if (logX_) {
        auto* log = new QLogValueAxis(this);
        log->setBase(10.0);
        log->setLabelFormat(QStringLiteral("%g"));
        log->setMinorTickCount(8);
        xAxis_ = log;
    } else {
        xAxis_ = makeValueAxis(this);
    }
    xAxis_->setTitleText(title);
    xAxis_->setTitleFont(titleFont);
    chart()->addAxis(xAxis_, Qt::AlignBottom);
    for (QXYSeries* series : drawn_)
        series->attachAxis(xAxis_);
    styleAxis(xAxis_);
}

void ChartView::fillSeries(int index)
{
    QList<QPointF> shown;
    const ChartSeries& series = seriesData(index);
    shown.reserve(series.points.size());
    for (const QPointF& p : series.points)
        if (this->shown(p))
            shown.append(p);
    drawnSeries(index)->replace(shown);
}

void ChartView::colourSeries()
{
    QStringList names;
    for (int i = 0; i < seriesCount(); ++i) {
        const ChartSeries& series = seriesData(i);
        qsizetype slot = names.indexOf(series.name);
        const bool first = slot < 0;
        if (first) {
            slot = names.size();
            names.append(series.name);
        }
        QColor colour;
        const qsizetype own = paletteColours_.size();
        if (slot < own)
            colour = paletteColours_.at(slot);
        else if (!extraColours_.empty())
            colour = extraColours_[static_cast<std::size_t>(slot - own) % extraColours_.size()];
        else
            colour = paletteColours_.at(slot % own);
        colour = readableOn(colour, chart()->plotAreaBackgroundBrush().color());
        QXYSeries* drawn = drawnSeries(i);
        const bool measured = series.role == SeriesRole::Measured;
        drawn->setPen(QPen(colour, measured ? kMeasuredPenWidth : kModelPenWidth, Qt::SolidLine, Qt::RoundCap,
                           Qt::RoundJoin));
        drawn->setBrush(colour);
        drawn->setPointsVisible(measured && series.points.size() <= kMostMarkedPoints);
        drawn->setMarkerSize(kMarkerSize);
        // One legend entry per name: a model drawn over its measured curve adds none.
        for (QLegendMarker* marker : chart()->legend()->markers(drawn))
            marker->setVisible(first);
    }
    // A long legend goes beside the plot, where its names need not be cut.
    chart()->legend()->setAlignment(names.size() > kLegendEntriesBelow ? Qt::AlignRight : Qt::AlignBottom);
}

void ChartView::setXRange(double min, double max)
{
    fixedX_ = AxisRange{min, max};
    showHome();
}

void ChartView::setYRange(double min, double max)
{
    fixedY_ = AxisRange{min, max};
    showHome();
}

void ChartView::clearRanges()
{
    fixedX_.reset();
    fixedY_.reset();
    showHome();
}

AxisRange ChartView::xRange() const { return rangeOf(xAxis_); }

AxisRange ChartView::yRange() const { return rangeOf(yAxis_); }

bool ChartView::shown(QPointF p) const { return finite(p) && (!logX_ || p.x() > 0.0); }

// The extent of the points drawn along X or Y; low > high when none is.
AxisRange ChartView::extent(bool alongX) const
{
    AxisRange range{std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
    for (const ChartSeries& series : data_)
        for (QPointF p : series.points)
            if (shown(p)) {
                const double value = alongX ? p.x() : p.y();
                range.min = std::min(range.min, value);
                range.max = std::max(range.max, value);
            }
    return range;
}

AxisRange ChartView::homeX() const
{
    if (fixedX_)
        return *fixedX_;
    const AxisRange data = extent(true);
    if (logX_)
        return decadeRange(data.min, data.max);
    return data.min <= data.max ? roundRange(data.min, data.max) : AxisRange{};
}

AxisRange ChartView::homeY() const
{
    if (fixedY_)
        return *fixedY_;
    const AxisRange data = extent(false);
    return data.min <= data.max ? roundRange(data.min, data.max) : AxisRange{};
}

void ChartView::showHome()
{
    setRangeOf(xAxis_, homeX());
    setRangeOf(yAxis_, homeY());
    // What it read is no longer under the pointer.
    readout_->hide();
}

void ChartView::resetZoom() { showHome(); }

bool ChartView::setAppearanceName(const QString& name)
{
    if (!appearanceNames().contains(name))
        return false;
    const auto look = appearanceByResource(appearanceResourceName(name));
    if (!look)
        return false;
    appearance_ = name;
    chart()->setBackgroundBrush(look->background);
    chart()->setBackgroundPen(Qt::NoPen);
    chart()->setPlotAreaBackgroundBrush(look->plotArea);
    chart()->setPlotAreaBackgroundPen(QPen(look->axis, 1.0));
    chart()->setTitleBrush(look->text);
    chart()->legend()->setLabelColor(look->text);
    setBackgroundBrush(look->background);
    styleAxis(xAxis_);
    styleAxis(yAxis_);
    colourSeries();
    readout_->setStyleSheet(QStringLiteral("QLabel { color: %1; background: %2; border: 1px solid %3; }")
                                .arg(look->text.name(), look->plotArea.name(), look->grid.name()));
    update();
    return true;
}

void ChartView::styleAxis(QAbstractAxis* axis)
{
    const auto look = appearanceByResource(appearanceResourceName(appearance_));
    if (!look)
        return;
    axis->setGridLineColor(look->grid);
    axis->setMinorGridLineColor(look->grid.lighter(look->text.lightness() > 128 ? 80 : 105));
    axis->setLinePenColor(look->axis);
    axis->setLabelsColor(look->text);
    axis->setTitleBrush(look->text);
}

bool ChartView::setPaletteName(const QString& name)
{
    if (!paletteNames().contains(name))
        return false;
    QList<QColor> colours = paletteByResource(paletteResourceName(name));
    if (colours.isEmpty())
        return false;
    palette_ = name;
    paletteColours_ = std::move(colours);
    colourSeries();
    update();
    return true;
}

void ChartView::setExtraColours(std::vector<QColor> colours)
{
    extraColours_ = std::move(colours);
    colourSeries();
}

void ChartView::setLegendVisible(bool visible) { chart()->legend()->setVisible(visible); }

bool ChartView::legendVisible() const { return chart()->legend()->isVisible(); }

QPointF ChartView::toChart(QPointF widgetPosition) const
{
    return chart()->mapFromScene(mapToScene(widgetPosition.toPoint()));
}

std::optional<QPointF> ChartView::valueAt(QPointF widgetPosition) const
{
    const QRectF area = chart()->plotArea();
    const QPointF at = toChart(widgetPosition);
    if (!area.contains(at) || area.width() <= 0.0 || area.height() <= 0.0)
        return std::nullopt;
    const double fx = (at.x() - area.left()) / area.width();
    const double fy = (area.bottom() - at.y()) / area.height();
    const AxisRange x = xRange();
    const AxisRange y = yRange();
    const double xValue = logX_ ? std::exp(std::log(x.min) + fx * (std::log(x.max) - std::log(x.min)))
                                : x.min + fx * (x.max - x.min);
    return QPointF(xValue, y.min + fy * (y.max - y.min));
}

void ChartView::zoomAt(double factor, QPointF widgetPosition)
{
    const auto centre = valueAt(widgetPosition);
    if (!centre || !(factor > 0.0))
        return;
    const auto around = [factor](AxisRange range, double at) {
        return AxisRange{at - (at - range.min) / factor, at + (range.max - at) / factor};
    };
    if (logX_) {
        const AxisRange x = xRange();
        const AxisRange logs = around({std::log(x.min), std::log(x.max)}, std::log(centre->x()));
        setRangeOf(xAxis_, {std::exp(logs.min), std::exp(logs.max)});
    } else {
        setRangeOf(xAxis_, around(xRange(), centre->x()));
    }
    setRangeOf(yAxis_, around(yRange(), centre->y()));
}

QString ChartView::readout() const { return readout_->isVisible() ? readout_->text() : QString(); }

void ChartView::showReadout(QPointF widgetPosition)
{
    const auto value = valueAt(widgetPosition);
    if (!value) {
        readout_->hide();
        return;
    }
    readout_->setText(QString::fromStdString(formatText("x = %g, y = %g", value->x(), value->y())));
    readout_->adjustSize();
    placeReadout();
    readout_->show();
}

void ChartView::placeReadout()
{
    const QRectF area = chart()->plotArea();
    const QPoint corner = mapFromScene(chart()->mapToScene(area.topRight()));
    readout_->move(corner.x() - readout_->width() - 4, corner.y() + 4);
}

QImage ChartView::grabImage(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(backgroundBrush().color());
    const QSizeF shown = chart()->size();
    chart()->resize(size);
    chart()->layout()->activate();
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        scene()->render(&painter, QRectF(QPointF(0, 0), size), QRectF(chart()->pos(), QSizeF(size)));
    }
    chart()->resize(shown);
    chart()->layout()->activate();
    return image;
}

void ChartView::wheelEvent(QWheelEvent* event)
{
    const int notches = event->angleDelta().y();
    if (notches == 0) {
        event->ignore();
        return;
    }
    zoomAt(std::pow(kWheelZoom, notches / 120.0), event->position());
    showReadout(event->position());
    event->accept();
}

void ChartView::mouseMoveEvent(QMouseEvent* event)
{
    QChartView::mouseMoveEvent(event);
    showReadout(event->position());
}

void ChartView::mouseReleaseEvent(QMouseEvent* event)
{
    // The right button opens the context menu; it does not zoom out.
    if (event->button() == Qt::RightButton) {
        event->accept();
        return;
    }
    QChartView::mouseReleaseEvent(event);
}

void ChartView::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        resetZoom();
        event->accept();
        return;
    }
    QChartView::mouseDoubleClickEvent(event);
}

void ChartView::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Home) {
        resetZoom();
        event->accept();
        return;
    }
    QChartView::keyPressEvent(event);
}

void ChartView::contextMenuEvent(QContextMenuEvent* event)
{
    QMenu menu(this);
    menu.addAction(resetZoomAction_);
    menu.exec(event->globalPos());
    event->accept();
}

void ChartView::leaveEvent(QEvent* event)
{
    readout_->hide();
    QChartView::leaveEvent(event);
}

void ChartView::resizeEvent(QResizeEvent* event)
{
    QChartView::resizeEvent(event);
    placeReadout();
}

}  // namespace zelko::ui
