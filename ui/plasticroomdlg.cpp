#include "ui/plasticroomdlg.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QSpinBox>
#include <QTimer>
#include <QVBoxLayout>

#include "base/fileio.h"
#include "base/gridtext.h"
#include "base/textfile.h"
#include "cold/coldfit.h"
#include "cold/coldlaws.h"
#include "cold/curvefile.h"
#include "cold/lawcomparison.h"
#include "cold/yieldpoint.h"
#include "cold/tensilereduction.h"
#include "material/tensilechain.h"
#include "ui/backgroundrun.h"
#include "ui/charttensiledlg.h"
#include "ui/chartview.h"
#include "ui/lawcomparisondlg.h"
#include "ui/listctrlext.h"
#include "ui/plastic8advanceddlg.h"
#include "ui/plasticroomadvdlg.h"
#include "ui/screentext.h"

using namespace zelko;
using zelko::ui::fieldNumber;
using zelko::ui::fieldText;
using zelko::ui::numberText;

namespace {

const QString kCaption = QStringLiteral("ZELKO_MAT");
// Curve files beyond this are for the command-line tool; the grid would take minutes.
constexpr qint64 kMaxCurveFileBytes = 16 * 1024 * 1024;

enum PointColumn { FirstValue, SecondValue, Weight, PointColumns };

QString fromUtf8(const std::string& text) { return QString::fromStdString(text); }

// Ctrl+V on the point list reads the clipboard as a curve file, header and all.
class PasteAsCurve : public QObject {
public:
    PasteAsCurve(QObject* parent, std::function<void()> paste) : QObject(parent), paste_(std::move(paste)) {}

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->matches(QKeySequence::Paste)) {
            paste_();
            return true;
        }
        return QObject::eventFilter(watched, event);
    }

private:
    std::function<void()> paste_;
};

}  // namespace

CPlasticRoomDlg::CPlasticRoomDlg(const Project& material, const Environment& environment, QWidget* parent)
    : QDialog(parent), material_(material), environment_(environment)
{
    setObjectName(QStringLiteral("CPlasticRoomDlg"));
    setWindowTitle(QStringLiteral("Tensile test"));
    run_ = new zelko::ui::BackgroundRun(this);
    refresh_ = new QTimer(this);
    refresh_->setSingleShot(true);
    refresh_->setInterval(150);
    connect(refresh_, &QTimer::timeout, this, &CPlasticRoomDlg::refreshCurve);

    auto* sides = new QHBoxLayout;
    sides->addWidget(makeDataSide());
    sides->addWidget(makeCurveSide(), 1);
    sides->addWidget(makeFitSide());

    status_ = new QLabel(this);
    status_->setObjectName(QStringLiteral("status"));
    status_->setWordWrap(true);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(sides, 1);
    layout->addWidget(status_);
    auto* buttons = zelko::ui::okCancelButtons(this);
    ok_ = buttons->button(QDialogButtonBox::Ok);
    layout->addWidget(buttons);

    connect(run_, &zelko::ui::BackgroundRun::progressed, progress_, &QProgressBar::setValue);
    connect(run_, &zelko::ui::BackgroundRun::runningChanged, this, &CPlasticRoomDlg::setRunning);
    setRunning(false);

    translateWindow(this, QStringLiteral("PlasticRoom"));
    // A list box holds data for the translator, so its law names are done here.
    for (int row = 0; row < laws_->count(); ++row)
        laws_->item(row)->setText(translateText(laws_->item(row)->text()));
    chart_->setAxisTitles(translateText(QStringLiteral("Strain")), translateText(QStringLiteral("Stress [MPa]")));
    yieldButton_->setToolTip(translateText(yieldButton_->toolTip()));
    // After the translation: the chart's series and the headers are named in the screen's language.
    if (const auto* record = dynamic_cast<const RoomOri*>(material_.activeModel.get()))
        showRecord(*record);
    else
        showPointHeaders();
    resize(1180, 680);
}

CPlasticRoomDlg::~CPlasticRoomDlg() = default;

QWidget* CPlasticRoomDlg::makeDataSide()
{
    auto* group = new QGroupBox(QStringLiteral("Raw data"), this);
    inputKind_ = new QComboBox(group);
    inputKind_->setObjectName(QStringLiteral("inputKind"));
    inputKind_->addItems({QStringLiteral("Load - Displacement"), QStringLiteral("Engineering stress - strain"),
                          QStringLiteral("True stress - strain")});

    points_ = new zelko::ui::CListCtrlExt(0, PointColumns, group);
    points_->setObjectName(QStringLiteral("points"));
    points_->setRealOnly(true);
    points_->setNegativesAllowed(true);
    zelko::ui::setUpPointList(points_);
    points_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    points_->installEventFilter(new PasteAsCurve(this, [this] {
        const std::string text = QApplication::clipboard()->text().toStdString();
        std::string error;
        if (const std::optional<Curve> curve = readCurveText(text, error)) {
            showCurve(*curve);
            inputsChanged();
            startNewCurveAtYield();
        } else {
            QMessageBox::warning(this, kCaption, translateText(QStringLiteral("The pasted text is not a curve: %1"))
                                                     .arg(fromUtf8(error)));
        }
    }));
    connect(points_, &zelko::ui::CListCtrlExt::contentEdited, this, &CPlasticRoomDlg::inputsChanged);

    auto* import = new QPushButton(QStringLiteral("Import raw data"), group);
    import->setObjectName(QStringLiteral("importRawData"));
    auto* paste = new QPushButton(QStringLiteral("Paste"), group);
    paste->setObjectName(QStringLiteral("paste"));
    connect(import, &QPushButton::clicked, this, [this] {
        const QString path = QFileDialog::getOpenFileName(
            this, QString(), QString(), QStringLiteral("Curve files (*.csv *.txt *.dat);;All files (*)"));
        if (!path.isEmpty())
            importCurve(path);
    });
    connect(paste, &QPushButton::clicked, this, [this] {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_V, Qt::ControlModifier);
        QApplication::sendEvent(points_, &press);
    });

    diameter_ = new QLineEdit(group);
    diameter_->setObjectName(QStringLiteral("diameter"));
    gaugeLength_ = new QLineEdit(group);
    gaugeLength_->setObjectName(QStringLiteral("gaugeLength"));
    lengthUnit_ = new QComboBox(group);
    lengthUnit_->setObjectName(QStringLiteral("lengthUnit"));
    for (const char* name : kLengthUnitNames)
        lengthUnit_->addItem(QString::fromLatin1(name));
    forceUnit_ = new QComboBox(group);
    forceUnit_->setObjectName(QStringLiteral("forceUnit"));
    for (const char* name : kForceUnitNames)
        forceUnit_->addItem(QString::fromLatin1(name));
    auto* specimen = new QFormLayout;
    specimen->addRow(QStringLiteral("Diameter"), diameter_);
    specimen->addRow(QStringLiteral("Gage length"), gaugeLength_);
    specimen->addRow(QStringLiteral("Unit of length"), lengthUnit_);
    specimen->addRow(QStringLiteral("Unit of force"), forceUnit_);

    for (QLineEdit* field : {diameter_, gaugeLength_})
        connect(field, &QLineEdit::textEdited, this, &CPlasticRoomDlg::inputsChanged);
    for (QComboBox* choice : {lengthUnit_, forceUnit_})
        connect(choice, &QComboBox::activated, this, &CPlasticRoomDlg::inputsChanged);
    connect(inputKind_, &QComboBox::activated, this, [this] {
        showPointHeaders();
        resetPlacedPoints();
        inputsChanged();
    });

    auto* commands = new QHBoxLayout;
    commands->addWidget(import);
    commands->addWidget(paste);
    auto* layout = new QVBoxLayout(group);
    layout->addWidget(inputKind_);
    layout->addWidget(points_, 1);
    layout->addLayout(commands);
    layout->addLayout(specimen);
    group->setMinimumWidth(300);
    return group;
}

QWidget* CPlasticRoomDlg::makeCurveSide()
{
    auto* side = new QWidget(this);
    chart_ = new zelko::ui::ChartView(side);
    chart_->setObjectName(QStringLiteral("chart"));
    chart_->setMinimumSize(480, 360);
    chart_->setAxisTitles(QStringLiteral("Strain"), QStringLiteral("Stress [MPa]"));
    chart_->setAppearanceName(QStringLiteral("Nature"));
    chart_->setPaletteName(QStringLiteral("Nature"));
    auto* chartButton = new QPushButton(QStringLiteral("Chart"), side);
    chartButton->setObjectName(QStringLiteral("openChart"));
    chartButton->setAutoDefault(false);
    connect(chartButton, &QPushButton::clicked, this, &CPlasticRoomDlg::openChart);

    curveForm_ = new QButtonGroup(side);
    auto* engineering = new QRadioButton(QStringLiteral("Engineering"), side);
    engineering->setObjectName(QStringLiteral("engineering"));
    auto* trueCurve = new QRadioButton(QStringLiteral("True"), side);
    trueCurve->setObjectName(QStringLiteral("true"));
    curveForm_->addButton(engineering, static_cast<int>(CurveForm::Engineering));
    curveForm_->addButton(trueCurve, static_cast<int>(CurveForm::True));
    trueCurve->setChecked(true);
    connect(curveForm_, &QButtonGroup::idClicked, this, &CPlasticRoomDlg::refreshCurve);

    placed_ = new QButtonGroup(side);
    auto* placedRow = new QHBoxLayout;
    int id = 0;
    for (const char* name : {"Necking point", "Last point", "Fracture point"}) {
        auto* button = new QRadioButton(QString::fromLatin1(name), side);
        button->setObjectName(QStringLiteral("placed%1").arg(id));
        placed_->addButton(button, id++);
        placedRow->addWidget(button);
    }
    placedRow->addStretch();
    placedRow->addWidget(engineering);
    placedRow->addWidget(trueCurve);
    placedRow->addWidget(chartButton);
    connect(placed_, &QButtonGroup::idClicked, this, [this](int which) {
        if (which == static_cast<int>(PlacedPoint::Last) && entered_)
            placePoint(static_cast<int>(entered_->inputCurve().size()) - 1);
        showPlacedPoint();
    });

    slider_ = new QSlider(Qt::Horizontal, side);
    slider_->setObjectName(QStringLiteral("pointSlider"));
    connect(slider_, &QSlider::valueChanged, this, &CPlasticRoomDlg::placePoint);
    pointLabel_ = new QLabel(side);
    pointLabel_->setObjectName(QStringLiteral("pointLabel"));
    pointLabel_->setMinimumWidth(160);
    start_ = new QSpinBox(side);
    start_->setObjectName(QStringLiteral("startPoint"));
    connect(start_, &QSpinBox::valueChanged, this, &CPlasticRoomDlg::placeStart);
    auto* yield = new QPushButton(QStringLiteral("0.2 % yield"), side);
    yield->setObjectName(QStringLiteral("startAtYield"));
    yield->setAutoDefault(false);
    yield->setToolTip(QStringLiteral("Start at the 0.2 % offset yield point (the elastic slope read from the curve)"));
    yieldButton_ = yield;
    connect(yield, &QPushButton::clicked, this, &CPlasticRoomDlg::startAtYield);
    auto* sliderRow = new QHBoxLayout;
    sliderRow->addWidget(slider_, 1);
    sliderRow->addWidget(pointLabel_);
    sliderRow->addWidget(new QLabel(QStringLiteral("Start point"), side));
    sliderRow->addWidget(start_);
    sliderRow->addWidget(yield);

    auto* layout = new QVBoxLayout(side);
    layout->addWidget(chart_, 1);
    layout->addLayout(placedRow);
    layout->addLayout(sliderRow);
    return side;
}

QWidget* CPlasticRoomDlg::makeFitSide()
{
    auto* group = new QGroupBox(QStringLiteral("Flow curve"), this);
    laws_ = new QListWidget(group);
    laws_->setObjectName(QStringLiteral("laws"));
    for (int position = 0; position < kColdLawListSize; ++position)
        laws_->addItem(QString::fromLatin1(coldLawListEntry(position).text));
    laws_->setMinimumHeight(laws_->sizeHintForRow(0) * (kColdLawListSize + 1));
    connect(laws_, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) { chooseLaw(laws_->row(item)); });
    connect(laws_, &QListWidget::itemActivated, this, [this](QListWidgetItem* item) { chooseLaw(laws_->row(item)); });

    weighted_ = new QCheckBox(QStringLiteral("Weighting"), group);
    weighted_->setObjectName(QStringLiteral("weighted"));
    neckingConstraint_ = new QCheckBox(QStringLiteral("Necking constraint"), group);
    neckingConstraint_->setObjectName(QStringLiteral("neckingConstraint"));
    compare_ = new QPushButton(QStringLiteral("Compare laws"), group);
    compare_->setObjectName(QStringLiteral("compareLaws"));
    compare_->setAutoDefault(false);
    connect(compare_, &QPushButton::clicked, this, &CPlasticRoomDlg::compareLaws);
    options_ = new QPushButton(QStringLiteral("Numerical option"), group);
    options_->setObjectName(QStringLiteral("numericalOption"));
    connect(options_, &QPushButton::clicked, this, &CPlasticRoomDlg::editOptions);

    progress_ = new QProgressBar(group);
    progress_->setObjectName(QStringLiteral("progress"));
    progress_->setRange(0, 100);
    cancel_ = new QPushButton(QStringLiteral("Stop fit"), group);
    cancel_->setObjectName(QStringLiteral("stopFit"));
    connect(cancel_, &QPushButton::clicked, this, &CPlasticRoomDlg::cancelFit);
    auto* running = new QHBoxLayout;
    running->addWidget(progress_, 1);
    running->addWidget(cancel_);

    auto* simulation = new QGroupBox(QStringLiteral("Simulation (8)"), group);
    fracture_ = new QPushButton(QStringLiteral("Fracture criteria"), simulation);
    fracture_->setObjectName(QStringLiteral("fractureCriteria"));
    writeJob_ = new QPushButton(QStringLiteral("Write and start job"), simulation);
    writeJob_->setObjectName(QStringLiteral("writeJob"));
    readResult_ = new QPushButton(QStringLiteral("Read result"), simulation);
    readResult_->setObjectName(QStringLiteral("readResult"));
    connect(fracture_, &QPushButton::clicked, this, &CPlasticRoomDlg::editFracture);
    connect(writeJob_, &QPushButton::clicked, this, &CPlasticRoomDlg::chooseAndWriteJob);
    connect(readResult_, &QPushButton::clicked, this, &CPlasticRoomDlg::chooseAndReadResult);
    auto* simulationLayout = new QVBoxLayout(simulation);
    for (QPushButton* button : {fracture_, writeJob_, readResult_})
        simulationLayout->addWidget(button);

    for (QPushButton* button : {options_, cancel_, fracture_, writeJob_, readResult_})
        button->setAutoDefault(false);
    auto* layout = new QVBoxLayout(group);
    layout->addWidget(laws_);
    layout->addWidget(compare_);
    layout->addWidget(weighted_);
    layout->addWidget(neckingConstraint_);
    layout->addWidget(options_);
    layout->addLayout(running);
    layout->addWidget(simulation);
    layout->addStretch();
    group->setMinimumWidth(250);
    return group;
}

void CPlasticRoomDlg::showCurve(const Curve& curve)
{
    // Filled as the owner's own writes: no edit signals, one repaint.
    const QSignalBlocker blocker(points_);
    points_->setUpdatesEnabled(false);
    points_->clearContents();
    points_->setRowCount(static_cast<int>(curve.size()));
    for (int row = 0; row < static_cast<int>(curve.size()); ++row) {
        const CurvePoint& p = curve[static_cast<std::size_t>(row)];
        points_->setItem(row, FirstValue, new QTableWidgetItem(numberText("%.10g", p.x)));
        points_->setItem(row, SecondValue, new QTableWidgetItem(numberText("%.10g", p.y)));
        if (p.hasWeight)
            points_->setItem(row, Weight, new QTableWidgetItem(numberText("%.10g", p.weight)));
    }
    points_->setUpdatesEnabled(true);
    resetPlacedPoints();
}

void CPlasticRoomDlg::showRecord(const RoomOri& record)
{
    const ShownTest test = shownTestOf(record);
    inputKind_->setCurrentIndex(std::clamp(test.inputKind, 0, 2));
    showPointHeaders();
    showCurve(test.curve);
    diameter_->setText(test.diameter > 0.0 ? fieldText(test.diameter) : QString());
    gaugeLength_->setText(test.gaugeLength > 0.0 ? fieldText(test.gaugeLength) : QString());
    weighted_->setChecked(record.weighted);
    neckingConstraint_->setChecked(record.neckingConstraint);
    startIndex_ = record.startIndex;
    neckingIndex_ = test.curve.empty() ? -1 : record.neckingIndex;
    endIndex_ = test.curve.empty() ? -1 : record.endIndex;
    // Shared, not copied: a law holds its own true curve.
    law_ = std::dynamic_pointer_cast<const ColdLaw>(record.heldModel);
    simulation_ = std::dynamic_pointer_cast<const PLASTIC_8>(record.heldModel);
    for (int position = 0; position < kColdLawListSize; ++position) {
        const std::optional<ColdLawId> law = coldLawListEntry(position).law;
        if ((law_ && law && static_cast<int>(*law) == law_->modelNumber) || (simulation_ && !law))
            laws_->setCurrentRow(position);
    }
    if (!test.curve.empty())
        refreshCurve();
}

void CPlasticRoomDlg::showPointHeaders()
{
    const bool load = inputKind_->currentIndex() == LoadDisplacement;
    points_->setHorizontalHeaderLabels({translateText(load ? QStringLiteral("Displacement") : QStringLiteral("Strain")),
                                        translateText(load ? QStringLiteral("Load") : QStringLiteral("Stress")),
                                        translateText(QStringLiteral("Weight"))});
    placed_->button(static_cast<int>(inputKind_->currentIndex() == TrueCurve ? PlacedPoint::Necking
                                                                             : PlacedPoint::Fracture))
        ->setChecked(true);
}

void CPlasticRoomDlg::resetPlacedPoints()
{
    startIndex_ = 0;
    neckingIndex_ = -1;
    endIndex_ = -1;
}

void CPlasticRoomDlg::inputsChanged()
{
    entered_.reset();
    pendingEdits_ = true;
    refresh_->start();
}

bool CPlasticRoomDlg::enter()
{
    if (entered_)
        return true;
    TensileTest test;
    test.inputKind = inputKind_->currentIndex();
    test.lengthUnit = lengthUnit_->currentIndex();
    test.forceUnit = forceUnit_->currentIndex();
    for (int row = 0; row < points_->rowCount(); ++row) {
        const QString x = points_->cellText(row, FirstValue).trimmed();
        const QString y = points_->cellText(row, SecondValue).trimmed();
        const QString w = points_->cellText(row, Weight).trimmed();
        if (x.isEmpty() && y.isEmpty() && w.isEmpty())
            continue;
        const std::optional<double> first = fieldNumber(x), second = fieldNumber(y);
        const std::optional<double> weight = w.isEmpty() ? std::optional<double>(1.0) : fieldNumber(w);
        if (!first || !second || !weight) {
            showStatus(translateText(QStringLiteral("Point %1 is not a pair of numbers.")).arg(row + 1), true);
            return false;
        }
        test.curve.push_back(CurvePoint{*first, *second, *weight, !w.isEmpty()});
    }
    if (test.curve.empty()) {
        showStatus(translateText(QStringLiteral("Enter, paste or import the measured curve.")), false);
        return false;
    }
    test.diameter = fieldNumber(diameter_->text()).value_or(0.0);
    test.gaugeLength = fieldNumber(gaugeLength_->text()).value_or(0.0);
    EnteredTest entered = enterTensileTest(material_, std::move(test));
    if (!entered.record) {
        showStatus(fromUtf8(entered.error), true);
        return false;
    }
    entered_ = std::move(entered.record);
    const int last = static_cast<int>(entered_->inputCurve().size()) - 1;
    startIndex_ = std::clamp(startIndex_, 0, last);
    neckingIndex_ = neckingIndex_ < 0 || neckingIndex_ > last ? maximumStressIndex(entered_->curves[EngineeringCurve])
                                                             : neckingIndex_;
    endIndex_ = endIndex_ < 0 || endIndex_ > last ? last : endIndex_;
    entered_->startIndex = startIndex_;
    entered_->neckingIndex = neckingIndex_;
    entered_->endIndex = endIndex_;
    showStatus(QString(), false);
    if (startAtYieldWhenEntered_)
        placeStartAtYield();
    showPlacedPoint();
    return true;
}

std::shared_ptr<const RoomOri> CPlasticRoomDlg::enteredRecord()
{
    return enter() ? entered_ : nullptr;
}

void CPlasticRoomDlg::showPlacedPoint()
{
    const int last = entered_ ? static_cast<int>(entered_->inputCurve().size()) - 1 : 0;
    const auto which = static_cast<PlacedPoint>(placed_->checkedId());
    const int index = which == PlacedPoint::Necking ? neckingIndex_ : endIndex_;
    {
        const QSignalBlocker blocker(slider_);
        slider_->setRange(0, std::max(0, last));
        slider_->setValue(std::max(0, index));
        slider_->setEnabled(entered_ && which != PlacedPoint::Last && !run_->running());
        const QSignalBlocker startBlocker(start_);
        start_->setRange(0, std::max(0, last));
        start_->setValue(startIndex_);
    }
    if (!entered_) {
        pointLabel_->clear();
        return;
    }
    const double value = placedPointValue(*entered_, which, index);
    switch (which) {
    case PlacedPoint::Fracture:
        pointLabel_->setText(numberText(entered_->inputKind == TrueCurve ? "%g" : "%f", value)
                                 .prepend(translateText(QStringLiteral("Fracture")) + QStringLiteral(": ")));
        break;
    case PlacedPoint::Necking:
        pointLabel_->setText(numberText("%g", value).prepend(translateText(QStringLiteral("Necking")) + QStringLiteral(": ")));
        break;
    case PlacedPoint::Last:
        pointLabel_->setText(numberText("%g", value).prepend(translateText(QStringLiteral("Last point")) + QStringLiteral(": ")));
        break;
    }
}

void CPlasticRoomDlg::placeStart(int index)
{
    startIndex_ = index;
    if (entered_)
        entered_->startIndex = index;
    pendingEdits_ = true;
    refresh_->start();
}

void CPlasticRoomDlg::placePoint(int index)
{
    if (!entered_)
        return;
    if (static_cast<PlacedPoint>(placed_->checkedId()) == PlacedPoint::Necking)
        neckingIndex_ = entered_->neckingIndex = index;
    else
        endIndex_ = entered_->endIndex = index;
    pendingEdits_ = true;
    showPlacedPoint();
    refresh_->start();
}

void CPlasticRoomDlg::refreshCurve()
{
    shown_ = {};
    chart_->clearSeries();
    if (!enter()) {
        showPlacedPoint();
        return;
    }
    const auto form = static_cast<CurveForm>(curveForm_->checkedId());
    shown_.measured = measuredPoints(*entered_, form);
    if (law_) {
        shown_.fitted = lawPoints(*law_, *entered_, form);
        shown_.fittedName = QString::fromLatin1(coldLawTitle(static_cast<ColdLawId>(law_->modelNumber)));
    } else if (simulation_ && form == CurveForm::True) {
        shown_.fitted = identifiedPoints(*simulation_);
        shown_.fittedName = QString::fromLatin1(coldLawListEntry(0).text);
    }
    shown_.fittedName = translateText(shown_.fittedName);
    for (const zelko::ui::ChartSeries& series : chartSeries())
        chart_->addSeries(series);
}

std::vector<zelko::ui::ChartSeries> CPlasticRoomDlg::chartSeries() const
{
    using zelko::ui::pointList;
    const bool engineering = curveForm_->checkedId() == static_cast<int>(CurveForm::Engineering);
    std::vector<zelko::ui::ChartSeries> series;
    if (shown_.measured.size() > 0)
        series.push_back({translateText(engineering ? QStringLiteral("Engineering") : QStringLiteral("True")),
                          pointList(shown_.measured), zelko::ui::SeriesRole::Measured});
    if (shown_.fitted.size() > 0)
        series.push_back({shown_.fittedName, pointList(shown_.fitted), zelko::ui::SeriesRole::Model});
    return series;
}

void CPlasticRoomDlg::openChart()
{
    const std::vector<zelko::ui::ChartSeries> series = chartSeries();
    zelko::ui::CDIALOG_GRAPH_TENSILE chart(translateText(QStringLiteral("Strain")),
                                          translateText(QStringLiteral("Stress [MPa]")), series, this);
    // The points behind the curves, for the chart's CSV export: a strain column,
    // then each curve's stress (the law is drawn at the measured strains).
    auto* values = new zelko::ui::CListCtrlExt(&chart);
    values->hide();
    values->setObjectName(QStringLiteral("chartValues"));
    values->setColumnCount(static_cast<int>(series.size()) + 1);
    QStringList headers{translateText(QStringLiteral("Strain"))};
    int rows = 0;
    for (const zelko::ui::ChartSeries& curve : series) {
        headers << curve.name;
        rows = std::max(rows, static_cast<int>(curve.points.size()));
    }
    values->setHorizontalHeaderLabels(headers);
    values->setRowCount(rows);
    for (int column = 0; column < static_cast<int>(series.size()); ++column) {
        const QList<QPointF>& points = series[static_cast<std::size_t>(column)].points;
        for (int row = 0; row < static_cast<int>(points.size()); ++row) {
            if (!values->item(row, 0))
                values->setItem(row, 0, new QTableWidgetItem(numberText("%.10g", points[row].x())));
            values->setItem(row, column + 1, new QTableWidgetItem(numberText("%.10g", points[row].y())));
        }
    }
    chart.setDataList(values);
    chart.exec();
}

std::optional<ColdLawId> CPlasticRoomDlg::selectedLaw() const
{
    return coldLawListEntry(laws_->currentRow()).law;
}

void CPlasticRoomDlg::chooseLaw(int position)
{
    if (run_->running())
        return;
    laws_->setCurrentRow(position);
    const ColdLawListEntry entry = coldLawListEntry(position);
    if (!entry.law) {
        showStatus(translateText(QStringLiteral("Write the solver's job, then read its result when the solver has "
                                                "finished.")),
                   false);
        return;
    }
    const std::optional<TensileFitSettings> settings = fitSettings();
    if (!settings)
        return;
    showStatus(translateText(QStringLiteral("Fitting %1 ...")).arg(laws_->item(position)->text()), false);
    auto record = std::dynamic_pointer_cast<const RoomOri>(entered_->clone());
    run_->start([material = material_, record, law = *entry.law, settings = *settings, environment = environment_,
                 this](const RunControl& control) -> std::function<void()> {
        TensileFit fit = fitTensileLaw(material, *record, law, settings, environment, control);
        return [this, fit = std::move(fit)] { finishFit(fit); };
    });
}

std::optional<TensileFitSettings> CPlasticRoomDlg::fitSettings()
{
    if (!enter()) {
        QMessageBox::warning(this, kCaption, status_->text());
        return std::nullopt;
    }
    if (neckingIndex_ - startIndex_ + 1 < 2) {
        // Nothing to fit, as the screen always did; said rather than silent.
        showStatus(translateText(QStringLiteral("Fewer than two points lie between the start and the necking "
                                                "point: there is nothing to fit.")),
                   true);
        return std::nullopt;
    }
    TensileFitSettings settings;
    settings.startIndex = startIndex_;
    settings.neckingIndex = neckingIndex_;
    settings.endIndex = endIndex_;
    settings.weighted = weighted_->isChecked();
    settings.neckingConstraint = neckingConstraint_->isChecked();
    settings.method = method_;
    return settings;
}

void CPlasticRoomDlg::compareLaws()
{
    if (run_->running())
        return;
    const std::optional<TensileFitSettings> settings = fitSettings();
    if (!settings)
        return;
    showStatus(translateText(QStringLiteral("Fitting every law ...")), false);
    auto record = std::dynamic_pointer_cast<const RoomOri>(entered_->clone());
    run_->start([record, settings = *settings, this](const RunControl& control) -> std::function<void()> {
        LawComparisonResult result = compareTensileLaws(*record, settings, control);
        ChartPoints measured = measuredPoints(*record, CurveForm::True);
        return [this, result = std::move(result), measured = std::move(measured)] {
            if (result.cancelled) {
                showStatus(translateText(QStringLiteral("The comparison was stopped.")), false);
                return;
            }
            showStatus(QString(), false);
            CLawComparisonDlg comparison(result, measured, translateText(QStringLiteral("True")), this);
            if (comparison.exec() != QDialog::Accepted || !comparison.chosenLaw())
                return;
            for (int position = 0; position < kColdLawListSize; ++position)
                if (coldLawListEntry(position).law == comparison.chosenLaw())
                    chooseLaw(position);
        };
    });
}

void CPlasticRoomDlg::startNewCurveAtYield()
{
    // Row 0 of a load or engineering curve is zero force: a law fitted from there
    // follows the elastic line. A new curve starts where plastic flow does, as the
    // command-line tool's fit does, once the specimen lets it be entered.
    startAtYieldWhenEntered_ = inputKind_->currentIndex() != TrueCurve;
}

std::optional<int> CPlasticRoomDlg::yieldIndex(std::string& error) const
{
    const std::optional<YieldPoint> yield = offsetYieldPoint(startSelectionCurve(*entered_), error);
    return yield ? std::optional<int>(yield->index) : std::nullopt;
}

void CPlasticRoomDlg::placeStartAtYield()
{
    startAtYieldWhenEntered_ = false;
    std::string ignored;  // a curve without a yield point keeps its start
    const std::optional<int> yield = yieldIndex(ignored);
    if (!yield)
        return;
    startIndex_ = entered_->startIndex = *yield;
    showStatus(translateText(QStringLiteral("Start point at the 0.2 % offset yield (point %1); set it to 0 to fit "
                                            "from the first point."))
                   .arg(*yield),
               false);
}

void CPlasticRoomDlg::startAtYield()
{
    if (!enter())
        return;
    std::string error;
    const std::optional<int> yield = yieldIndex(error);
    if (!yield) {
        QMessageBox::warning(this, kCaption, QString::fromStdString(error));
        return;
    }
    start_->setValue(*yield);
}

void CPlasticRoomDlg::finishFit(const TensileFit& fit)
{
    if (fit.cancelled) {
        showStatus(translateText(QStringLiteral("The fit was stopped; the flow curve is as it was.")), false);
        return;
    }
    if (!fit.material) {
        showStatus(fromUtf8(fit.error), true);
        QMessageBox::warning(this, kCaption, fromUtf8(fit.error));
        return;
    }
    material_ = *fit.material;
    law_ = fit.law;
    simulation_.reset();
    changed_ = true;
    pendingEdits_ = false;
    // Entered again from the fitted record, so later edits keep its law.
    entered_.reset();
    showStatus(QString(), false);
    refreshCurve();
    // The described text; another method than the descent also says how it ended.
    std::string text = fit.text;
    if (method_ != FitMethod::Descent && fit.law)
        text += "\n" + fitEndText(*fit.law);
    QMessageBox result(QMessageBox::Information, kCaption, fromUtf8(text), QMessageBox::Ok, this);
    result.setObjectName(QStringLiteral("fitResult"));
    // The result lines are aligned in columns.
    result.setStyleSheet(QStringLiteral("QLabel { font-family: monospace; }"));
    result.exec();
}

bool CPlasticRoomDlg::fitRunning() const { return run_->running(); }

void CPlasticRoomDlg::cancelFit() { run_->cancel(); }

void CPlasticRoomDlg::setRunning(bool running)
{
    progress_->setVisible(running);
    cancel_->setVisible(running);
    // Only Stop fit while a fit runs: the record it reads stays as it was given.
    for (QWidget* input : std::initializer_list<QWidget*>{inputKind_, points_, diameter_, gaugeLength_, lengthUnit_,
                                                          forceUnit_, slider_, start_, yieldButton_, laws_, compare_,
                                                          weighted_, neckingConstraint_, options_, fracture_,
                                                          writeJob_, readResult_, ok_})
        input->setEnabled(!running);
    for (QAbstractButton* choice : placed_->buttons())
        choice->setEnabled(!running);
    if (!running)
        showPlacedPoint();
}

void CPlasticRoomDlg::showStatus(const QString& text, bool problem)
{
    status_->setText(text);
    status_->setStyleSheet(problem ? QStringLiteral("color: #b00020;") : QString());
}

bool CPlasticRoomDlg::importCurve(const QString& path)
{
    std::string error;
    const std::optional<std::string> bytes = readFileBytes(path.toStdString(), error, kMaxCurveFileBytes);
    std::optional<Curve> curve = bytes ? readCurveText(*bytes, error) : std::nullopt;
    if (curve && curve->size() > kMaxTableRows) {
        error = formatText("the curve has %zu points; this screen takes at most %zu (zelko-mat-cli fit-cold takes more)",
                           curve->size(), kMaxTableRows);
        curve.reset();
    }
    if (!curve) {
        QMessageBox::warning(this, kCaption, path + QStringLiteral(": ") + fromUtf8(error));
        return false;
    }
    showCurve(*curve);
    inputsChanged();
    startNewCurveAtYield();
    return true;
}

void CPlasticRoomDlg::editOptions()
{
    const ColdLawId law = selectedLaw().value_or(ColdLawId::Swift);
    const auto* record = dynamic_cast<const RoomOri*>(material_.activeModel.get());
    const RoomOri fresh;
    CPlasticRoomAdvDlg options(law, ColdFitOptions::of(record ? *record : fresh, law, method_), this);
    if (options.exec() != QDialog::Accepted)
        return;
    method_ = options.options().method;
    auto edited = record ? std::dynamic_pointer_cast<RoomOri>(record->clone()) : std::make_shared<RoomOri>();
    options.options().applyTo(*edited);
    keepRecord(std::move(edited));
    inputsChanged();
}

void CPlasticRoomDlg::keepRecord(std::shared_ptr<RoomOri> record)
{
    material_.setModel(std::move(record));
    changed_ = true;
    pendingEdits_ = false;
}

void CPlasticRoomDlg::editFracture()
{
    CPlastic8AdvancedDlg fracture(jobSettings_, this);
    if (fracture.exec() == QDialog::Accepted)
        jobSettings_ = fracture.settings();
}

bool CPlasticRoomDlg::writeJob(const QString& jobFile)
{
    if (!enter()) {
        QMessageBox::warning(this, kCaption, status_->text());
        return false;
    }
    std::string error;
    if (!writeTensileJob(*entered_, jobFile.toStdString(), jobSettings_, error)) {
        QMessageBox::warning(this, kCaption, jobFile + QStringLiteral(": ") + fromUtf8(error));
        return false;
    }
    lastJob_ = jobFile;
    if (!startTensileSolver(jobFile.toStdString(), environment_, error)) {
        QMessageBox::warning(this, kCaption, fromUtf8(error));
        return false;
    }
    showStatus(translateText(QStringLiteral("The solver runs in the job's folder; read its result when it has "
                                            "finished.")),
               false);
    return true;
}

void CPlasticRoomDlg::chooseAndWriteJob()
{
    QFileDialog dialog(this, QString(), lastJob_, QStringLiteral("ZELKO Tensile Files(*.tnsprj)"));
    dialog.setObjectName(QStringLiteral("jobFileDialog"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QStringLiteral("tnsprj"));
    if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty())
        writeJob(dialog.selectedFiles().constFirst());
}

bool CPlasticRoomDlg::readJobResult(const QString& jobFile)
{
    if (!enter()) {
        QMessageBox::warning(this, kCaption, status_->text());
        return false;
    }
    TensileResult result = readTensileJobResult(material_, *entered_, jobFile.toStdString());
    if (!result.material) {
        QMessageBox::warning(this, kCaption, translateText(QString::fromLatin1(tensileResultMessage(result.status))));
        return false;
    }
    material_ = std::move(*result.material);
    const auto* record = dynamic_cast<const RoomOri*>(material_.activeModel.get());
    simulation_ = std::dynamic_pointer_cast<const PLASTIC_8>(record->heldModel);
    law_.reset();
    lastJob_ = jobFile;
    changed_ = true;
    pendingEdits_ = false;
    entered_.reset();
    laws_->setCurrentRow(0);
    const QSignalBlocker blocker(curveForm_);
    curveForm_->button(static_cast<int>(CurveForm::True))->setChecked(true);
    refreshCurve();
    return true;
}

void CPlasticRoomDlg::chooseAndReadResult()
{
    QString job = lastJob_;
    if (job.isEmpty())
        job = QFileDialog::getOpenFileName(this, QString(), QString(), QStringLiteral("ZELKO Tensile Files(*.tnsprj)"));
    if (!job.isEmpty())
        readJobResult(job);
}

void CPlasticRoomDlg::accept()
{
    if (run_->running())
        return;
    // What was entered or placed since the last fit still goes into the record.
    if (pendingEdits_) {
        if (!enter()) {
            QMessageBox::warning(this, kCaption, status_->text());
            return;
        }
        keepRecord(std::dynamic_pointer_cast<RoomOri>(entered_->clone()));
    }
    QDialog::accept();
}

void CPlasticRoomDlg::reject()
{
    run_->cancel();
    QDialog::reject();
}
