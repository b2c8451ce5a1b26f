// The chart as the user drives it: series and their colours, styles switched,
// ranges, zoom and its reset, the readout, and the picture grabbed for export.

#include <QtTest>

#include <QAction>
#include <QChart>
#include <QLabel>
#include <QLogValueAxis>
#include <QLegend>
#include <QLegendMarker>
#include <QXYSeries>

#include <cmath>
#include <memory>

#include "ui/chartstyles.h"
#include "ui/chartview.h"

using namespace zelko::ui;

namespace {

QList<QPointF> line(int count, double slope, double x0 = 0.0, double step = 1.0)
{
    QList<QPointF> points;
    for (int i = 0; i < count; ++i)
        points.append({x0 + i * step, slope * (x0 + i * step)});
    return points;
}

// Ranges of a plot area hundreds of pixels wide agree to a pixel or better.
constexpr double kPixelShare = 1e-2;

bool near(double a, double b, double scale) { return std::abs(a - b) <= kPixelShare * scale; }

}  // namespace

class ChartViewTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void seriesAreKeptAsGiven();
    void rolesAreDrawnApart();
    void sharedNamesShareAColour();
    void paletteChangeRecoloursAtOnce();
    void appearanceChangeRestylesAtOnce();
    void unknownNamesChangeNothing();
    void extraColoursFollowThePalette();
    void automaticAndFixedRanges();
    void logarithmicAxisLeavesOutNonPositiveX();
    void wheelZoomThenResetRestoresTheRanges();
    void rubberBandZoomThenResetRestoresTheRanges();
    void readoutShowsTheValueUnderThePointer();
    void grabbedImageHasTheAskedSize();
    void legendSwitches();
    void legendNamesEachCurveOnce();

private:
    void showView();
    // A point of the widget at fractions of the plot area (0,0 bottom left).
    QPoint inPlot(double fx, double fy) const;
    void sendWheel(QPoint at, int delta);

    std::unique_ptr<ChartView> view_;
};

void ChartViewTest::init() { view_ = std::make_unique<ChartView>(); }

void ChartViewTest::cleanup() { view_.reset(); }

void ChartViewTest::showView()
{
    view_->resize(640, 480);
    view_->show();
    QVERIFY(QTest::qWaitForWindowExposed(view_.get()));
    QCoreApplication::processEvents();
}

QPoint ChartViewTest::inPlot(double fx, double fy) const
{
    const QRectF area = view_->chart()->plotArea();
    const QPointF chartPoint(area.left() + fx * area.width(), area.bottom() - fy * area.height());
    return view_->mapFromScene(view_->chart()->mapToScene(chartPoint));
}

void ChartViewTest::sendWheel(QPoint at, int delta)
{
    QWheelEvent wheel(at, view_->viewport()->mapToGlobal(at), QPoint(), QPoint(0, delta), Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(view_->viewport(), &wheel);
}

void ChartViewTest::seriesAreKeptAsGiven()
{
    view_->setAxisTitles("Strain", "Stress [MPa]");
    QCOMPARE(view_->xTitle(), QStringLiteral("Strain"));
    QCOMPARE(view_->yTitle(), QStringLiteral("Stress [MPa]"));
    const QList<QPointF> measured = line(5, 100.0);
    QCOMPARE(view_->addSeries("Engineering", measured, SeriesRole::Measured), 0);
    QCOMPARE(view_->addSeries({"Swift", line(3, 90.0), SeriesRole::Model}), 1);
    QCOMPARE(view_->seriesCount(), 2);
    QCOMPARE(view_->seriesData(0).points, measured);
    QCOMPARE(view_->seriesData(1).name, QStringLiteral("Swift"));
    QCOMPARE(view_->drawnSeries(0)->points(), measured);
    QCOMPARE(view_->drawnSeries(1)->name(), QStringLiteral("Swift"));
    QCOMPARE(view_->chart()->series().size(), 2);
    // points that cannot be drawn are kept in the data but not drawn
    view_->addSeries("gaps", {{0, 1}, {1, qQNaN()}, {2, qInf()}, {3, 4}}, SeriesRole::Measured);
    QCOMPARE(view_->seriesData(2).points.size(), 4);
    QCOMPARE(view_->drawnSeries(2)->points(), (QList<QPointF>{{0, 1}, {3, 4}}));
    view_->clearSeries();
    QCOMPARE(view_->seriesCount(), 0);
    QVERIFY(view_->chart()->series().isEmpty());
}

void ChartViewTest::rolesAreDrawnApart()
{
    view_->addSeries("few measured", line(10, 1.0), SeriesRole::Measured);
    view_->addSeries("many measured", line(500, 1.0), SeriesRole::Measured);
    view_->addSeries("model", line(10, 1.0), SeriesRole::Model);
    // measured: thin, with markers while they do not merge; model: a thicker plain line
    QVERIFY(view_->drawnSeries(0)->pointsVisible());
    QVERIFY(!view_->drawnSeries(1)->pointsVisible());
    QVERIFY(!view_->drawnSeries(2)->pointsVisible());
    QVERIFY(view_->drawnSeries(2)->pen().widthF() > view_->drawnSeries(0)->pen().widthF());
    QCOMPARE(view_->drawnSeries(2)->pen().style(), Qt::SolidLine);
}

void ChartViewTest::sharedNamesShareAColour()
{
    view_->setPaletteName("Office");
    const QColor plot = view_->chart()->plotAreaBackgroundBrush().color();
    QList<QColor> office;
    for (const QColor& colour : paletteByResource("CHART_PALETTE_OFFICE"))
        office.append(readableOn(colour, plot));
    view_->addSeries("T:1000, R:0.1", line(5, 1.0), SeriesRole::Measured);
    view_->addSeries("T:1000, R:0.1", line(5, 1.1), SeriesRole::Model);
    view_->addSeries("T:1100, R:0.1", line(5, 0.9), SeriesRole::Measured);
    view_->addSeries("T:1100, R:0.1", line(5, 0.8), SeriesRole::Model);
    QCOMPARE(view_->drawnSeries(0)->color(), office.at(0));
    QCOMPARE(view_->drawnSeries(1)->color(), office.at(0));
    QCOMPARE(view_->drawnSeries(2)->color(), office.at(1));
    QCOMPARE(view_->drawnSeries(3)->color(), office.at(1));
}

void ChartViewTest::paletteChangeRecoloursAtOnce()
{
    view_->addSeries("a", line(5, 1.0), SeriesRole::Measured);
    view_->addSeries("b", line(5, 2.0), SeriesRole::Model);
    const QColor plot = view_->chart()->plotAreaBackgroundBrush().color();
    for (const QString& name : paletteNames()) {
        QVERIFY(view_->setPaletteName(name));
        QCOMPARE(view_->paletteName(), name);
        const QList<QColor> colours = paletteByResource(paletteResourceName(name));
        QCOMPARE(view_->drawnSeries(0)->pen().color(), readableOn(colours.at(0), plot));
        QCOMPARE(view_->drawnSeries(0)->brush().color(), readableOn(colours.at(0), plot));
        QCOMPARE(view_->drawnSeries(1)->pen().color(), readableOn(colours.at(1), plot));
    }
    // a series added later takes the current palette too
    view_->setPaletteName("Fire");
    view_->addSeries("c", line(5, 3.0), SeriesRole::Model);
    QCOMPARE(view_->drawnSeries(2)->color(), readableOn(paletteByResource("CHART_PALETTE_FIRE").at(2), plot));
}

void ChartViewTest::appearanceChangeRestylesAtOnce()
{
    view_->addSeries("a", line(5, 1.0), SeriesRole::Measured);
    for (const QString& name : appearanceNames()) {
        QVERIFY(view_->setAppearanceName(name));
        QCOMPARE(view_->appearanceName(), name);
        const ChartAppearance look = *appearanceByResource(appearanceResourceName(name));
        QChart* chart = view_->chart();
        QCOMPARE(chart->backgroundBrush().color(), look.background);
        QCOMPARE(chart->plotAreaBackgroundBrush().color(), look.plotArea);
        QCOMPARE(chart->legend()->labelColor(), look.text);
        for (QAbstractAxis* axis : chart->axes()) {
            QCOMPARE(axis->gridLineColor(), look.grid);
            QCOMPARE(axis->labelsColor(), look.text);
            QCOMPARE(axis->titleBrush().color(), look.text);
            QCOMPARE(axis->linePenColor(), look.axis);
        }
    }
    // the curves follow: a dark palette colour turns light on the dark plot area
    view_->setPaletteName("Victorian");
    const QColor dark = paletteByResource("CHART_PALETTE_VICTORIAN").at(0);
    view_->setAppearanceName("Nature");
    QCOMPARE(view_->drawnSeries(0)->color(), dark);
    view_->setAppearanceName("Black");
    QVERIFY(view_->drawnSeries(0)->color().lightness() > dark.lightness());
    QVERIFY(contrastRatio(view_->drawnSeries(0)->color(), view_->chart()->plotAreaBackgroundBrush().color())
            >= kReadableLineContrast);
    // the logarithmic axis that replaces the X axis is styled as well
    view_->setAppearanceName("Black");
    view_->setLogarithmicX(true);
    for (QAbstractAxis* axis : view_->chart()->axes())
        QCOMPARE(axis->labelsColor(), appearanceByResource("CHART_APPEARANCE_BLACK")->text);
}

void ChartViewTest::unknownNamesChangeNothing()
{
    view_->setPaletteName("Blue");
    view_->setAppearanceName("Gray");
    QVERIFY(!view_->setPaletteName("Bleu"));
    QVERIFY(!view_->setPaletteName("CHART_PALETTE_BLUE"));  // names, not resource names
    QVERIFY(!view_->setAppearanceName("Pink"));
    QCOMPARE(view_->paletteName(), QStringLiteral("Blue"));
    QCOMPARE(view_->appearanceName(), QStringLiteral("Gray"));
}

void ChartViewTest::extraColoursFollowThePalette()
{
    view_->setPaletteName("Primary Colors");
    const QList<QColor> own = paletteByResource("CHART_PALETTE_PRIMARYCOLORS");
    const std::vector<QColor> extra{QColor(1, 2, 3), QColor(4, 5, 6)};
    view_->setExtraColours(extra);
    for (int i = 0; i < own.size() + 3; ++i)
        view_->addSeries(QString::number(i), line(3, i), SeriesRole::Model);
    const QColor plot = view_->chart()->plotAreaBackgroundBrush().color();
    QCOMPARE(view_->drawnSeries(int(own.size()) - 1)->color(), readableOn(own.constLast(), plot));
    QCOMPARE(view_->drawnSeries(int(own.size()))->color(), extra[0]);
    QCOMPARE(view_->drawnSeries(int(own.size()) + 1)->color(), extra[1]);
    QCOMPARE(view_->drawnSeries(int(own.size()) + 2)->color(), extra[0]);  // and round again
}

void ChartViewTest::automaticAndFixedRanges()
{
    // nothing to show: a plain unit range
    QCOMPARE(view_->xRange(), (AxisRange{0.0, 1.0}));
    view_->addSeries("curve", {{0.0, 0.0}, {0.113, 312.0}, {0.05, 725.4}}, SeriesRole::Measured);
    const AxisRange x = view_->xRange();
    const AxisRange y = view_->yRange();
    // round ends around the data
    QVERIFY(x.min <= 0.0 && x.max >= 0.113 && x.max <= 0.15);
    QVERIFY(y.min <= 0.0 && y.max >= 725.4 && y.max <= 800.0);
    QCOMPARE(std::remainder(y.max, 100.0), 0.0);
    view_->setXRange(0.0, 0.5);
    view_->setYRange(100.0, 200.0);
    QCOMPARE(view_->xRange(), (AxisRange{0.0, 0.5}));
    QCOMPARE(view_->yRange(), (AxisRange{100.0, 200.0}));
    // fixed ranges stay when series come and go
    view_->addSeries("more", {{3.0, 3000.0}}, SeriesRole::Model);
    QCOMPARE(view_->xRange(), (AxisRange{0.0, 0.5}));
    view_->clearRanges();
    QVERIFY(view_->xRange().max >= 3.0 && view_->yRange().max >= 3000.0);
    // a single value still gets a range around it
    view_->clearSeries();
    view_->addSeries("one", {{2.0, 5.0}}, SeriesRole::Measured);
    QVERIFY(view_->xRange().min < 2.0 && view_->xRange().max > 2.0);
    QVERIFY(view_->yRange().min < 5.0 && view_->yRange().max > 5.0);
}

void ChartViewTest::logarithmicAxisLeavesOutNonPositiveX()
{
    showView();
    const QList<QPointF> rates{{0.0, 50.0}, {0.001, 60.0}, {0.1, 90.0}, {5.0, 140.0}};
    view_->addSeries("T:1100, E:0.3", rates, SeriesRole::Measured);
    view_->setLogarithmicX(true);
    QVERIFY(view_->logarithmicX());
    QCOMPARE(view_->drawnSeries(0)->points(), rates.mid(1));
    QCOMPARE(view_->seriesData(0).points, rates);
    // whole decades around the positive values; the left-out point sets no range
    // (a hair wider, so the end decades keep their labels)
    QVERIFY(near(view_->xRange().min, 0.001, 1e-4) && view_->xRange().min <= 0.001);
    QVERIFY(near(view_->xRange().max, 10.0, 1e-4) && view_->xRange().max >= 10.0);
    QVERIFY(view_->yRange().min <= 60.0 && view_->yRange().min > 0.0);
    // the series is drawn against the new axis, the only one along X
    QCOMPARE(view_->chart()->axes(Qt::Horizontal).size(), 1);
    QVERIFY(qobject_cast<QLogValueAxis*>(view_->chart()->axes(Qt::Horizontal).constFirst()));
    QCOMPARE(view_->drawnSeries(0)->attachedAxes().size(), 2);
    QVERIFY(view_->drawnSeries(0)->attachedAxes().contains(view_->chart()->axes(Qt::Horizontal).constFirst()));
    // and nothing of the linear axis is left in the picture: no tick label below 0.001
    QCoreApplication::processEvents();
    const auto texts = view_->scene()->items();
    for (QGraphicsItem* item : texts)
        if (auto* text = dynamic_cast<QGraphicsTextItem*>(item); text && text->isVisible())
            QVERIFY2(text->toPlainText() != QLatin1String("0.5") && text->toPlainText() != QLatin1String("2"),
                     qPrintable(text->toPlainText()));
    view_->setLogarithmicX(false);
    QCOMPARE(view_->chart()->axes(Qt::Horizontal).size(), 1);
    QCOMPARE(view_->drawnSeries(0)->points(), rates);
    QCOMPARE(view_->xRange().min, 0.0);
}

void ChartViewTest::wheelZoomThenResetRestoresTheRanges()
{
    view_->addSeries("curve", line(50, 10.0), SeriesRole::Measured);
    showView();
    const AxisRange x = view_->xRange();
    const AxisRange y = view_->yRange();
    // zoom in about the centre: the centre stays where it was
    sendWheel(inPlot(0.5, 0.5), 120);
    const AxisRange zx = view_->xRange();
    QVERIFY(zx.max - zx.min < x.max - x.min);
    QVERIFY(near((zx.min + zx.max) / 2, (x.min + x.max) / 2, x.max - x.min));
    QVERIFY(view_->yRange().max - view_->yRange().min < y.max - y.min);
    // double click resets
    QTest::mouseDClick(view_->viewport(), Qt::LeftButton, {}, inPlot(0.5, 0.5));
    QCOMPARE(view_->xRange(), x);
    QCOMPARE(view_->yRange(), y);
    // wheel back: zooms out; Home resets
    sendWheel(inPlot(0.2, 0.2), -240);
    QVERIFY(view_->xRange().max - view_->xRange().min > x.max - x.min);
    QTest::keyClick(view_.get(), Qt::Key_Home);
    QCOMPARE(view_->xRange(), x);
    QCOMPARE(view_->yRange(), y);
    // and so does the context menu's command
    view_->zoomAt(3.0, inPlot(0.7, 0.7));
    QVERIFY(view_->xRange() != x);
    view_->resetZoomAction()->trigger();
    QCOMPARE(view_->xRange(), x);
    QCOMPARE(view_->yRange(), y);
}

void ChartViewTest::rubberBandZoomThenResetRestoresTheRanges()
{
    view_->addSeries("curve", line(50, 10.0), SeriesRole::Measured);
    view_->setLogarithmicX(false);
    showView();
    const AxisRange x = view_->xRange();
    const AxisRange y = view_->yRange();
    QWidget* viewport = view_->viewport();
    QTest::mousePress(viewport, Qt::LeftButton, {}, inPlot(0.25, 0.25));
    QTest::mouseMove(viewport, inPlot(0.5, 0.5));
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, inPlot(0.5, 0.5));
    const AxisRange zx = view_->xRange();
    const AxisRange zy = view_->yRange();
    const double width = x.max - x.min;
    const double height = y.max - y.min;
    QVERIFY2(near(zx.min, x.min + 0.25 * width, width) && near(zx.max, x.min + 0.5 * width, width),
             qPrintable(QString("%1..%2").arg(zx.min).arg(zx.max)));
    QVERIFY(near(zy.min, y.min + 0.25 * height, height) && near(zy.max, y.min + 0.5 * height, height));
    // a right click opens no zoom-out (the menu is the context menu's)
    QTest::mouseRelease(viewport, Qt::RightButton, {}, inPlot(0.5, 0.5));
    QCOMPARE(view_->xRange(), zx);
    QTest::keyClick(view_.get(), Qt::Key_Home);
    QCOMPARE(view_->xRange(), x);
    QCOMPARE(view_->yRange(), y);
}

void ChartViewTest::readoutShowsTheValueUnderThePointer()
{
    view_->addSeries("curve", {{0.0, 0.0}, {0.2, 800.0}}, SeriesRole::Measured);
    view_->setXRange(0.0, 0.2);
    view_->setYRange(0.0, 800.0);
    showView();
    QCOMPARE(view_->readout(), QString());
    const auto move = [this](QPoint at) {
        QMouseEvent event(QEvent::MouseMove, at, view_->viewport()->mapToGlobal(at), Qt::NoButton, Qt::NoButton, {});
        QApplication::sendEvent(view_->viewport(), &event);
    };
    const QPoint at = inPlot(0.25, 0.75);
    move(at);
    // what the label shows is the value at that pixel
    const QRectF area = view_->chart()->plotArea();
    const QPointF chartPoint = view_->chart()->mapFromScene(view_->mapToScene(at));
    const double x = 0.2 * (chartPoint.x() - area.left()) / area.width();
    const double y = 800.0 * (area.bottom() - chartPoint.y()) / area.height();
    QCOMPARE(view_->readout(), QString::asprintf("x = %g, y = %g", x, y));
    QVERIFY(near(x, 0.05, 0.2) && near(y, 600.0, 800.0));
    // the label sits inside the chart, clear of the pointer's way out
    const QLabel* label = view_->findChild<QLabel*>("readout");
    QVERIFY(view_->viewport()->rect().contains(label->geometry()));
    // on a logarithmic axis the value is read in decades
    view_->setLogarithmicX(true);
    view_->setXRange(0.01, 100.0);
    move(inPlot(0.5, 0.5));
    const auto value = view_->valueAt(inPlot(0.5, 0.5));
    QVERIFY(value && near(std::log10(value->x()), 0.0, 4.0));
    // a reset moves the values away from under the pointer: the readout goes
    QVERIFY(!view_->readout().isEmpty());
    QTest::keyClick(view_.get(), Qt::Key_Home);
    QCOMPARE(view_->readout(), QString());
    // the wheel reads the new value at once
    sendWheel(inPlot(0.5, 0.5), 120);
    QCOMPARE(view_->readout(), QString::asprintf("x = %g, y = %g", view_->valueAt(inPlot(0.5, 0.5))->x(),
                                                 view_->valueAt(inPlot(0.5, 0.5))->y()));
    // outside the plot area the readout hides
    move(QPoint(1, 1));
    QCOMPARE(view_->readout(), QString());
}

void ChartViewTest::grabbedImageHasTheAskedSize()
{
    view_->addSeries("curve", line(50, 10.0), SeriesRole::Model);
    view_->setAppearanceName("Black");
    showView();
    const QSize shown = view_->viewport()->size();
    for (const QSize size : {shown, QSize(300, 200), QSize(1200, 900)}) {
        const QImage image = view_->grabImage(size);
        QCOMPARE(image.size(), size);
        // the appearance's background in the corner, the chart's own size kept
        QCOMPARE(image.pixelColor(1, 1), appearanceByResource("CHART_APPEARANCE_BLACK")->background);
        QCOMPARE(view_->chart()->size().toSize(), shown);
    }
    // the curve is in the picture: some pixel takes the series colour
    const QImage image = view_->grabImage(shown);
    const QColor curve = view_->drawnSeries(0)->color();
    bool found = false;
    for (int y = 0; y < image.height() && !found; ++y)
        for (int x = 0; x < image.width() && !found; ++x)
            found = image.pixel(x, y) == curve.rgb();
    QVERIFY(found);
}

void ChartViewTest::legendSwitches()
{
    view_->setLegendVisible(false);
    QVERIFY(!view_->legendVisible());
    QVERIFY(!view_->chart()->legend()->isVisible());
    view_->setLegendVisible(true);
    QVERIFY(view_->legendVisible());
}

void ChartViewTest::legendNamesEachCurveOnce()
{
    const auto shownNames = [this] {
        QStringList names;
        for (QLegendMarker* marker : view_->chart()->legend()->markers())
            if (marker->isVisible())
                names << marker->label();
        return names;
    };
    view_->addSeries("Engineering", line(5, 1.0), SeriesRole::Measured);
    view_->addSeries("Swift", line(5, 1.1), SeriesRole::Model);
    showView();
    QCOMPARE(shownNames(), (QStringList{"Engineering", "Swift"}));
    QCOMPARE(view_->chart()->legend()->alignment(), Qt::AlignBottom);
    // a measured curve and its model: one entry
    view_->clearSeries();
    for (int t = 0; t < 5; ++t) {
        const QString name = QString::asprintf("T:%g, R:%g", 1050.0 + 50 * t, 0.1);
        view_->addSeries(name, line(5, t), SeriesRole::Measured);
        view_->addSeries(name, line(5, t + 0.5), SeriesRole::Model);
    }
    QCoreApplication::processEvents();
    QCOMPARE(shownNames().size(), 5);
    QCOMPARE(shownNames().constFirst(), QStringLiteral("T:1050, R:0.1"));
    // five names do not fit below the plot
    QCOMPARE(view_->chart()->legend()->alignment(), Qt::AlignRight);
}

QTEST_MAIN(ChartViewTest)
#include "chartviewtest.moc"
