#include "ui/hotcompdlg.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "base/fileio.h"
#include "base/textfile.h"
#include "hot/hotcsv.h"
#include "hot/hotmodels.h"
#include "material/hotchain.h"
#include "hot/plastic_70.h"
#include "hot/stresstable.h"
#include "hot/zenerhollomon.h"
#include "ui/backgroundrun.h"
#include "ui/hotchartdlg.h"
#include "ui/hotmicrosdlg.h"
#include "ui/processingmapdlg.h"
#include "ui/model70dlg.h"
#include "ui/zenerhollomondlg.h"
#include "ui/screentext.h"

using namespace zelko;
using zelko::ui::fieldNumber;
using zelko::ui::fieldText;

namespace {

const QString kCaption = QStringLiteral("ZELKO_MAT");
// The fit shows this much as soon as it starts.
constexpr int kFitStartProgress = 5;
// Items of the model choice.
constexpr int kZenerHollomonModel = 2;
constexpr int kModel70 = 3;

QString fromView(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<int>(text.size())); }

std::size_t at(HotGroup group) { return static_cast<std::size_t>(group); }

GroupItems itemsOf(const std::vector<double>& values)
{
    GroupItems items;
    for (const double value : values)
        items.push_back(formatText("%g", value));
    return items;
}

}  // namespace

CHotCompDlg::CHotCompDlg(const Project& material, const Environment& environment, QWidget* parent)
    : QDialog(parent), material_(material), environment_(environment)
{
    setObjectName(QStringLiteral("CHotCompDlg"));
    setWindowTitle(QStringLiteral("Hot compression test"));
    if (const HotDataSet* stored = hotDataSetOf(material_))
        dataSet_ = *stored;
    groups_ = {itemsOf(dataSet_.strainRates), itemsOf(dataSet_.temperatures), itemsOf(dataSet_.strains)};
    run_ = new zelko::ui::BackgroundRun(this);

    auto* sides = new QHBoxLayout;
    sides->addWidget(makeGroups());
    sides->addWidget(makeRawData(), 1);
    sides->addWidget(makeFitSide(), 1);

    auto* buttons = zelko::ui::okCancelButtons(this);
    ok_ = buttons->button(QDialogButtonBox::Ok);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(sides, 1);
    layout->addWidget(buttons);

    connect(run_, &zelko::ui::BackgroundRun::progressed, this,
            [this](int percent) { progress_->setValue(std::max(percent, kFitStartProgress)); });
    connect(run_, &zelko::ui::BackgroundRun::runningChanged, this, &CHotCompDlg::setRunning);
    setRunning(false);
    showDataSet();
    if (material_.activeModel && material_.activeModel->modelNumber == 70)
        model_->setCurrentIndex(kModel70);
    chooseModel(model_->currentIndex());
    translateWindow(this, QStringLiteral("PlasticHot"));
    resize(1100, 640);
}

CHotCompDlg::~CHotCompDlg() = default;

QWidget* CHotCompDlg::makeGroups()
{
    auto* side = new QWidget(this);
    auto* layout = new QVBoxLayout(side);
    const char* titles[] = {"Strain rate (1/s)", "Temperature", "Strain"};
    const char* names[] = {"strainRates", "temperatures", "strains"};
    for (std::size_t i = 0; i < 3; ++i) {
        auto* group = new QGroupBox(QString::fromLatin1(titles[i]), side);
        lists_[i] = new QListWidget(group);
        lists_[i]->setObjectName(QString::fromLatin1(names[i]));
        // Rates and temperatures choose the cells an import fills.
        lists_[i]->setSelectionMode(i < 2 ? QAbstractItemView::ExtendedSelection : QAbstractItemView::NoSelection);
        fields_[i] = new QLineEdit(group);
        fields_[i]->setObjectName(QString::fromLatin1(names[i]) + QStringLiteral("Value"));
        auto* add = new QPushButton(QStringLiteral("Add"), group);
        add->setObjectName(QStringLiteral("add") + QString::fromLatin1(names[i]));
        add->setAutoDefault(false);
        const auto which = static_cast<HotGroup>(i);
        connect(add, &QPushButton::clicked, this, [this, which] { addGroupValue(which); });
        connect(fields_[i], &QLineEdit::returnPressed, this, [this, which] { addGroupValue(which); });
        auto* row = new QHBoxLayout;
        row->addWidget(fields_[i], 1);
        row->addWidget(add);
        auto* inner = new QVBoxLayout(group);
        inner->addWidget(lists_[i], 1);
        inner->addLayout(row);
        layout->addWidget(group, 1);
    }
    auto* apply = new QPushButton(QStringLiteral("Apply groups"), side);
    apply->setObjectName(QStringLiteral("applyGroups"));
    apply->setAutoDefault(false);
    connect(apply, &QPushButton::clicked, this, &CHotCompDlg::applyGroups);
    layout->addWidget(apply);
    side->setMinimumWidth(200);
    return side;
}

QWidget* CHotCompDlg::makeRawData()
{
    auto* group = new QGroupBox(QStringLiteral("Raw data"), this);
    rawText_ = new QPlainTextEdit(group);
    rawText_->setObjectName(QStringLiteral("rawText"));
    rawText_->setLineWrapMode(QPlainTextEdit::NoWrap);
    rawText_->setFont(QFont(QStringLiteral("monospace")));
    numberedLines_ = new QCheckBox(QStringLiteral("Numbered lines"), group);
    numberedLines_->setObjectName(QStringLiteral("numberedLines"));
    columnMode_ = new QComboBox(group);
    columnMode_->setObjectName(QStringLiteral("columnMode"));
    columnMode_->addItems({QStringLiteral("Strain, Stress"), QStringLiteral("Value, Strain, Stress")});
    negateStrain_ = new QCheckBox(QStringLiteral("Negative strain"), group);
    negateStrain_->setObjectName(QStringLiteral("negateStrain"));
    negateStress_ = new QCheckBox(QStringLiteral("Negative stress"), group);
    negateStress_->setObjectName(QStringLiteral("negateStress"));
    measure_ = new QComboBox(group);
    measure_->setObjectName(QStringLiteral("strainMeasure"));
    for (const std::string_view item : kStrainMeasureItems)
        measure_->addItem(fromView(item));
    strainOffset_ = new QLineEdit(fieldText(dataSet_.strainOffset), group);
    strainOffset_->setObjectName(QStringLiteral("strainOffset"));

    auto* show = new QPushButton(QStringLiteral("Show curve"), group);
    show->setObjectName(QStringLiteral("showCurve"));
    auto* import = new QPushButton(QStringLiteral("Import raw data"), group);
    import->setObjectName(QStringLiteral("importRawData"));
    auto* csv = new QPushButton(QStringLiteral("Import CSV file"), group);
    csv->setObjectName(QStringLiteral("importCsv"));
    connect(show, &QPushButton::clicked, this, &CHotCompDlg::showCurve);
    connect(import, &QPushButton::clicked, this, &CHotCompDlg::importRawData);
    connect(csv, &QPushButton::clicked, this, [this] {
        const QString path = QFileDialog::getOpenFileName(this, QString(), QString(),
                                                          QStringLiteral("CSV files (*.csv *.txt);;All files (*)"));
        if (!path.isEmpty())
            importCsv(path);
    });

    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("Columns"), columnMode_);
    form->addRow(QStringLiteral("Strain measure"), measure_);
    form->addRow(QStringLiteral("Strain offset"), strainOffset_);
    auto* checks = new QHBoxLayout;
    for (QCheckBox* box : {numberedLines_, negateStrain_, negateStress_})
        checks->addWidget(box);
    auto* commands = new QHBoxLayout;
    for (QPushButton* button : {show, import, csv}) {
        button->setAutoDefault(false);
        commands->addWidget(button);
    }
    auto* layout = new QVBoxLayout(group);
    layout->addWidget(rawText_, 1);
    layout->addLayout(checks);
    layout->addLayout(form);
    layout->addLayout(commands);
    return group;
}

QWidget* CHotCompDlg::makeFitSide()
{
    auto* group = new QGroupBox(QStringLiteral("Model"), this);
    model_ = new QComboBox(group);
    model_->setObjectName(QStringLiteral("model"));
    for (const std::string_view item : kHotModelItems)
        model_->addItem(fromView(item));
    model_->setCurrentIndex(1);
    type_ = new QComboBox(group);
    type_->setObjectName(QStringLiteral("type"));
    for (const HotTypeItem& item : hotTypeItems())
        type_->addItem(fromView(item.text));
    type_->setCurrentIndex(1);
    auto* advanced = new QPushButton(QStringLiteral("Advanced"), group);
    advanced->setObjectName(QStringLiteral("advanced"));
    fit_ = new QPushButton(QStringLiteral("Fit"), group);
    fit_->setObjectName(QStringLiteral("fit"));
    stop_ = new QPushButton(QStringLiteral("Stop fit"), group);
    stop_->setObjectName(QStringLiteral("stopFit"));
    progress_ = new QProgressBar(group);
    progress_->setObjectName(QStringLiteral("progress"));
    progress_->setRange(0, 100);
    report_ = new QPlainTextEdit(group);
    report_->setObjectName(QStringLiteral("report"));
    report_->setReadOnly(true);
    report_->setLineWrapMode(QPlainTextEdit::NoWrap);
    report_->setFont(QFont(QStringLiteral("monospace")));
    connect(advanced, &QPushButton::clicked, this, &CHotCompDlg::editAdvanced);
    connect(fit_, &QPushButton::clicked, this, &CHotCompDlg::fit);
    connect(stop_, &QPushButton::clicked, this, &CHotCompDlg::cancelFit);
    for (QPushButton* button : {advanced, fit_, stop_})
        button->setAutoDefault(false);

    auto* choices = new QHBoxLayout;
    choices->addWidget(model_, 1);
    choices->addWidget(type_, 1);
    auto* commands = new QHBoxLayout;
    commands->addWidget(advanced);
    commands->addStretch();
    commands->addWidget(fit_);
    auto* running = new QHBoxLayout;
    running->addWidget(progress_, 1);
    running->addWidget(stop_);

    chart_ = new QPushButton(QStringLiteral("Chart"), group);
    chart_->setObjectName(QStringLiteral("chart"));
    parameters_ = new QPushButton(QStringLiteral("Parameters"), group);
    parameters_->setObjectName(QStringLiteral("parameters"));
    connect(chart_, &QPushButton::clicked, this, &CHotCompDlg::showChart);
    connect(parameters_, &QPushButton::clicked, this, &CHotCompDlg::editParameters);
    map_ = new QPushButton(QStringLiteral("Processing map"), group);
    map_->setObjectName(QStringLiteral("processingMap"));
    peaks_ = new QPushButton(QStringLiteral("Peak and steady state"), group);
    peaks_->setObjectName(QStringLiteral("peakSteady"));
    connect(map_, &QPushButton::clicked, this, &CHotCompDlg::showProcessingMap);
    connect(peaks_, &QPushButton::clicked, this, &CHotCompDlg::showPeakSteady);
    auto* views = new QHBoxLayout;
    for (QPushButton* button : {chart_, parameters_, map_, peaks_}) {
        button->setAutoDefault(false);
        views->addWidget(button);
    }
    views->addStretch();
    connect(model_, &QComboBox::currentIndexChanged, this, &CHotCompDlg::chooseModel);

    auto* layout = new QVBoxLayout(group);
    layout->addLayout(choices);
    layout->addLayout(commands);
    layout->addLayout(running);
    layout->addWidget(report_, 1);
    layout->addLayout(views);
    return group;
}

void CHotCompDlg::showGroups()
{
    for (std::size_t i = 0; i < 3; ++i) {
        lists_[i]->clear();
        for (const std::string& item : groups_[i])
            lists_[i]->addItem(QString::fromStdString(item));
    }
}

void CHotCompDlg::showDataSet()
{
    showGroups();
    const QSignalBlocker blocker(strainOffset_);
    strainOffset_->setText(fieldText(dataSet_.strainOffset));
}

void CHotCompDlg::message(const QString& text) { QMessageBox::information(this, kCaption, translateText(text)); }

void CHotCompDlg::addGroupValue(HotGroup group)
{
    QLineEdit* field = fields_[at(group)];
    const std::optional<double> value = fieldNumber(field->text());
    if (!value) {
        zelko::ui::refuseField(this, field);
        return;
    }
    const std::string_view refusal = zelko::addGroupValue(groups_[at(group)], group, *value);
    if (!refusal.empty()) {
        message(fromView(refusal));
        return;
    }
    showGroups();
    field->clear();
}

void CHotCompDlg::applyGroups()
{
    const std::string_view refusal = zelko::applyGroups(dataSet_, groups_[0], groups_[1], groups_[2]);
    if (!refusal.empty())
        message(fromView(refusal));
}

bool CHotCompDlg::groupsApplied() const
{
    // The cells follow the lists the data set holds; a value added since is not in them.
    return !dataSet_.curves.empty() && itemsOf(dataSet_.strainRates) == groups_[0]
           && itemsOf(dataSet_.temperatures) == groups_[1] && itemsOf(dataSet_.strains) == groups_[2];
}

CurveSelection CHotCompDlg::selection() const
{
    CurveSelection chosen;
    for (const QModelIndex& index : lists_[at(HotGroup::StrainRate)]->selectionModel()->selectedRows())
        chosen.strainRates.push_back(static_cast<std::size_t>(index.row()));
    for (const QModelIndex& index : lists_[at(HotGroup::Temperature)]->selectionModel()->selectedRows())
        chosen.temperatures.push_back(static_cast<std::size_t>(index.row()));
    return chosen;
}

RawCurveLayout CHotCompDlg::layout() const
{
    RawCurveLayout raw;
    raw.numberedLines = numberedLines_->isChecked();
    raw.columnMode = columnMode_->currentIndex();
    raw.negateStrain = negateStrain_->isChecked();
    raw.negateStress = negateStress_->isChecked();
    raw.measure = static_cast<StrainMeasure>(measure_->currentIndex());
    return raw;
}

bool CHotCompDlg::readStrainOffset(double& offset)
{
    const std::optional<double> value = fieldNumber(strainOffset_->text());
    if (!value) {
        zelko::ui::refuseField(this, strainOffset_);
        return false;
    }
    offset = *value;
    return true;
}

void CHotCompDlg::showCurve()
{
    const CurveSelection chosen = selection();
    if (!groupsApplied()) {
        message(QStringLiteral("Apply the groups first: the cells follow the lists as they were applied."));
        return;
    }
    if (chosen.strainRates.size() != 1 || chosen.temperatures.size() != 1) {
        message(QStringLiteral("Select one strain rate and one temperature."));
        return;
    }
    const HotCurve& curve = dataSet_.curve(chosen.temperatures[0], chosen.strainRates[0]);
    rawText_->setPlainText(
        QString::fromStdU16String(curveText(curve, numberedLines_->isChecked(), columnMode_->currentIndex()))
            .remove(QLatin1Char('\r')));
}

void CHotCompDlg::importRawData()
{
    if (!groupsApplied()) {
        message(QStringLiteral("Apply the groups first: the cells follow the lists as they were applied."));
        return;
    }
    double offset = 0.0;
    if (!readStrainOffset(offset))
        return;
    // The text goes through the exchange file, as other programs of the system expect it there.
    const std::u16string text = rawText_->toPlainText().replace(QLatin1Char('\n'), QStringLiteral("\r\n")).toStdU16String();
    if (const std::string_view refusal = writeRawCurveFile(text, environment_.exchangeFolder); !refusal.empty()) {
        QMessageBox::warning(this, kCaption, translateText(fromView(refusal)));
        return;
    }
    std::string error;
    const std::optional<std::string> bytes =
        readFileBytes(environment_.exchangeFolder / std::string(kRawCurveFileName), error);
    if (!bytes) {
        QMessageBox::warning(this, kCaption, QString::fromStdString(error));
        return;
    }
    HotDataSet imported = dataSet_;
    imported.strainOffset = offset;
    if (!importRawCurves(imported, *bytes, selection(), layout(), offset))
        return;
    dataSet_ = std::move(imported);
    // The reader is lenient, as the exchange file's other readers are: say so rather than let a 0 pass unseen.
    if (const std::size_t words = nonNumericTokens(text); words > 0)
        QMessageBox::warning(this, kCaption,
                             translateText(QStringLiteral("%1 values of the text are not numbers; they were read as "
                                                          "their leading number, or 0."))
                                 .arg(words));
}

bool CHotCompDlg::importCsv(const QString& path)
{
    double offset = 0.0;
    if (!readStrainOffset(offset))
        return false;
    std::string error;
    const std::optional<std::string> bytes = readFileBytes(path.toStdString(), error, kMaxHotCsvBytes);
    std::optional<PLASTIC_HOT> read;
    if (bytes) {
        HotCsvOptions options;
        options.strainOffset = offset;
        options.measure = static_cast<StrainMeasure>(measure_->currentIndex());
        read = readHotCurvesCsv(*bytes, options, error);
    }
    if (!read) {
        QMessageBox::warning(this, kCaption, path + QStringLiteral(": ") + QString::fromStdString(error));
        return false;
    }
    read->strains = defaultSampleStrains(*read);
    dataSet_ = std::move(*read);
    groups_ = {itemsOf(dataSet_.strainRates), itemsOf(dataSet_.temperatures), itemsOf(dataSet_.strains)};
    showDataSet();
    return true;
}

bool CHotCompDlg::groupsReady()
{
    if (run_->running())
        return false;
    if (!groupsApplied())
        applyGroups();
    return groupsApplied();
}

void CHotCompDlg::fit()
{
    if (!groupsReady())
        return;
    const int index = type_->currentIndex();
    const std::optional<HotModelId> id = modelIdOfTypeIndex(index);
    dataSet_.setHasThreeColumns(hotFlagOfColumnMode(columnMode_->currentIndex()));
    if (!id || !hotTypeItems()[static_cast<std::size_t>(index)].runsFit) {
        // Refused (162) or made without a fit (Zener-Hollomon): nothing to wait for.
        const TypeFit made = runTypeFit(dataSet_, index, dataSet_.hasThreeColumns(), options_);
        if (!made.message.empty())
            message(fromView(made.message));
        if (made.model)
            finishFit(made.model, reportWithNotes(made.result), {}, false);
        return;
    }
    progress_->setValue(kFitStartProgress);
    run_->start([material = material_, dataSet = dataSet_, id = *id, options = options_,
                 this](const RunControl& control) -> std::function<void()> {
        HotCurvesFit outcome = fitHotCurves(material, dataSet, id, options, control);
        std::shared_ptr<PLASTIC_HOT> model;
        if (outcome.material)
            model = std::dynamic_pointer_cast<PLASTIC_HOT>(outcome.material->activeModel);
        return [this, model, report = reportWithNotes(outcome.fit.result), error = outcome.error,
                cancelled = outcome.fit.cancelled] { finishFit(model, report, error, cancelled); };
    });
}

void CHotCompDlg::finishFit(std::shared_ptr<PLASTIC_HOT> model, const std::string& report, const std::string& error,
                            bool cancelled)
{
    if (cancelled) {
        report_->setPlainText(translateText(QStringLiteral("The fit was stopped; the model is as it was.")));
        progress_->setValue(0);
        return;
    }
    if (!model) {
        QMessageBox::warning(this, kCaption, QString::fromStdString(error));
        return;
    }
    progress_->setValue(100);
    takeModel(std::move(model), QString::fromStdString(report));
}

void CHotCompDlg::takeModel(std::shared_ptr<PLASTIC_HOT> model, const QString& report)
{
    material_.setModel(std::move(model));
    report_->setPlainText(report);
    hasFit_ = true;
    ok_->setEnabled(true);
}

std::shared_ptr<const PLASTIC_HOT> CHotCompDlg::shownModel() const
{
    if (hasFit_)
        if (auto fitted = std::dynamic_pointer_cast<const PLASTIC_HOT>(material_.activeModel))
            return fitted;
    return std::make_shared<PLASTIC_HOT>(dataSet_);
}

bool CHotCompDlg::choiceHasParameters() const
{
    return model_->currentIndex() == kZenerHollomonModel || model_->currentIndex() == kModel70;
}

void CHotCompDlg::chooseModel(int index)
{
    // The type each model stands for: the per-cell table for raw data, then
    // Hensel-Spittel and Zener-Hollomon; Model 70 has no fit and keeps the type.
    static constexpr std::array<int, 3> kTypeOfModel = {0, 1, 12};
    if (index >= 0 && index < static_cast<int>(kTypeOfModel.size()))
        type_->setCurrentIndex(kTypeOfModel[static_cast<std::size_t>(index)]);
    parameters_->setEnabled(choiceHasParameters());
}

void CHotCompDlg::showChart()
{
    if (!groupsReady())
        return;
    zelko::ui::CDIALOG_GRAPH2D chart(shownModel(), this);
    chart.exec();
}

void CHotCompDlg::showProcessingMap()
{
    if (!groupsReady())
        return;
    CDLG_PROCESSINGMAP map(*shownModel(), environment_, this);
    map.exec();
}

void CHotCompDlg::showPeakSteady()
{
    if (!groupsReady())
        return;
    CDIALOG_HOT_MICROS peaks(dataSet_, this);
    peaks.exec();
}

void CHotCompDlg::editParameters()
{
    if (!groupsReady())
        return;
    const std::shared_ptr<const Plastic> held = material_.activeModel;
    if (model_->currentIndex() == kModel70) {
        auto start = std::dynamic_pointer_cast<const PLASTIC_70>(held);
        auto model = start ? std::make_shared<PLASTIC_70>(*start) : newHotModel<PLASTIC_70>(dataSet_);
        static_cast<PLASTIC_HOT&>(*model) = dataSet_;
        model->modelNumber = 70;
        zelko::ui::CDIALOG_INPUT_MATR70 screen(*model, this);
        if (screen.exec() != QDialog::Accepted)
            return;
        takeModel(std::make_shared<PLASTIC_70>(screen.model()),
                  translateText(QStringLiteral("Model 70: its 28 parameters go to the library entry.")));
        return;
    }
    auto start = std::dynamic_pointer_cast<const PLASTIC_Zener_Hollomon>(held);
    auto model = newHotModel<PLASTIC_Zener_Hollomon>(dataSet_);
    if (start && start->strains == dataSet_.strains)
        model->orders = start->orders;
    zelko::ui::CDialogZenerHollomon screen(*model, this);
    if (screen.exec() != QDialog::Accepted)
        return;
    takeModel(std::make_shared<PLASTIC_Zener_Hollomon>(screen.model()),
              translateText(QStringLiteral("Zener-Hollomon constants for each sample strain.")));
}

bool CHotCompDlg::fitRunning() const { return run_->running(); }

void CHotCompDlg::cancelFit() { run_->cancel(); }

void CHotCompDlg::editAdvanced()
{
    // The fit's settings: the descent's length and first step, the method and what least squares minimises.
    QDialog advanced(this);
    advanced.setObjectName(QStringLiteral("CHotCompAdvDlg"));
    advanced.setWindowTitle(QStringLiteral("Advanced"));
    auto* iterations = new QLineEdit(QString::number(options_.maxIterations), &advanced);
    iterations->setObjectName(QStringLiteral("maxIterations"));
    auto* step = new QLineEdit(zelko::ui::numberText("%.3f", options_.initialStep), &advanced);
    step->setObjectName(QStringLiteral("initialStep"));
    auto* method = new QComboBox(&advanced);
    method->setObjectName(QStringLiteral("method"));
    // In the order of FitMethod, worded as the cold screen words them.
    method->addItems({QStringLiteral("Steepest descent"), QStringLiteral("Least squares"),
                      QStringLiteral("Steepest descent, then least squares")});
    method->setCurrentIndex(static_cast<int>(options_.method));
    auto* objective = new QComboBox(&advanced);
    objective->setObjectName(QStringLiteral("objective"));
    // In the order of HotObjective; least squares only (the descent minimises the stress error).
    objective->addItems({QStringLiteral("Stress error"), QStringLiteral("Relative error (ln stress)")});
    objective->setCurrentIndex(static_cast<int>(options_.objective));
    const auto objectiveApplies = [method, objective] {
        objective->setEnabled(method->currentIndex() != static_cast<int>(FitMethod::Descent));
    };
    objectiveApplies();
    connect(method, &QComboBox::currentIndexChanged, &advanced, objectiveApplies);
    // A share of the start's error at which the descent may stop, in percent (0: never).
    auto* target = new QLineEdit(zelko::ui::numberText("%.3f", 100.0 * options_.targetFraction), &advanced);
    target->setObjectName(QStringLiteral("targetPercent"));
    auto* weighting = new QComboBox(&advanced);
    weighting->setObjectName(QStringLiteral("weighting"));
    // In the order of HotWeighting.
    weighting->addItems({QStringLiteral("Equal"), QStringLiteral("Balanced by stress level")});
    weighting->setCurrentIndex(static_cast<int>(options_.weighting));
    auto* form = new QFormLayout(&advanced);
    form->addRow(QStringLiteral("Maximum iterations"), iterations);
    form->addRow(QStringLiteral("Initial step"), step);
    form->addRow(QStringLiteral("Target (% of the start's error)"), target);
    form->addRow(QStringLiteral("Weighting mode"), weighting);
    form->addRow(QStringLiteral("Method"), method);
    form->addRow(QStringLiteral("Objective"), objective);
    form->addRow(zelko::ui::okCancelButtons(&advanced));
    ManagerTranslate translator;
    translator.translateWindow(&advanced, QStringLiteral("PlasticHotAdv"));
    if (advanced.exec() != QDialog::Accepted)
        return;
    const std::optional<double> count = fieldNumber(iterations->text());
    const std::optional<double> first = fieldNumber(step->text());
    const std::optional<double> percent = fieldNumber(target->text());
    if (!count || *count < 0 || *count > 1e9 || !first || *first <= 0 || !percent || *percent < 0 ||
        *percent >= 100) {
        zelko::ui::refuseField(this, nullptr);
        return;
    }
    options_.maxIterations = static_cast<int>(*count);
    options_.initialStep = *first;
    options_.targetFraction = *percent / 100.0;
    options_.weighting = static_cast<HotWeighting>(weighting->currentIndex());
    options_.method = static_cast<FitMethod>(method->currentIndex());
    options_.objective = static_cast<HotObjective>(objective->currentIndex());
}

void CHotCompDlg::setRunning(bool running)
{
    progress_->setVisible(running || progress_->value() > 0);
    stop_->setVisible(running);
    fit_->setEnabled(!running);
    for (QPushButton* view : {chart_, map_, peaks_})
        view->setEnabled(!running);
    parameters_->setEnabled(!running && choiceHasParameters());
    ok_->setEnabled(!running && hasFit_);
    for (QListWidget* list : lists_)
        list->setEnabled(!running);
}

void CHotCompDlg::accept()
{
    if (run_->running())
        return;
    QDialog::accept();
}

void CHotCompDlg::reject()
{
    run_->cancel();
    QDialog::reject();
}
