#include "ui/processingmapdlg.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "hot/processingmap.h"
#include "ui/backgroundrun.h"
#include "ui/screentext.h"
#include "ui/staticgnuplot.h"

using namespace zelko;

namespace {

// Contours every 10 % of efficiency: the domains stand out without crowding the labels.
constexpr double kDefaultContourStep = 10.0;

}  // namespace

CDLG_PROCESSINGMAP::CDLG_PROCESSINGMAP(const PLASTIC_HOT& model, const Environment& environment, QWidget* parent)
    : QDialog(parent),
      model_(std::static_pointer_cast<const PLASTIC_HOT>(model.clone())),
      environment_(environment)
{
    setObjectName(QStringLiteral("CDLG_PROCESSINGMAP"));
    setWindowTitle(QStringLiteral("Processing map"));
    run_ = new zelko::ui::BackgroundRun(this);

    auto* strainGroup = new QGroupBox(QStringLiteral("Strain"), this);
    strains_ = new QListWidget(strainGroup);
    strains_->setObjectName(QStringLiteral("strains"));
    strains_->setSelectionMode(QAbstractItemView::SingleSelection);
    for (const double strain : model_->strains)
        strains_->addItem(zelko::ui::numberText("%g", strain));
    auto* strainLayout = new QVBoxLayout(strainGroup);
    strainLayout->addWidget(strains_);

    contourStep_ = new QLineEdit(zelko::ui::fieldText(kDefaultContourStep), this);
    contourStep_->setObjectName(QStringLiteral("contourStep"));
    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("Contour step"), contourStep_);

    draw_ = new QPushButton(QStringLiteral("Draw"), this);
    draw_->setObjectName(QStringLiteral("draw"));
    progress_ = new QProgressBar(this);
    progress_->setObjectName(QStringLiteral("progress"));
    progress_->setRange(0, 100);
    cancel_ = new QPushButton(QStringLiteral("Cancel"), this);
    cancel_->setObjectName(QStringLiteral("cancelMap"));
    for (QPushButton* button : {draw_, cancel_})
        button->setAutoDefault(false);
    connect(draw_, &QPushButton::clicked, this, &CDLG_PROCESSINGMAP::draw);
    connect(cancel_, &QPushButton::clicked, this, &CDLG_PROCESSINGMAP::cancelMap);
    connect(contourStep_, &QLineEdit::returnPressed, this, &CDLG_PROCESSINGMAP::draw);

    auto* running = new QHBoxLayout;
    running->addWidget(progress_, 1);
    running->addWidget(cancel_);
    auto* side = new QVBoxLayout;
    side->addWidget(strainGroup, 1);
    side->addLayout(form);
    side->addWidget(draw_);
    side->addLayout(running);

    plot_ = new CStaticGNUPlot(environment_, this);
    plot_->setObjectName(QStringLiteral("plot"));
    auto* body = new QHBoxLayout;
    body->addLayout(side);
    body->addWidget(plot_, 1);

    // A fixed caption: a desktop theme's "&Close" would miss the translation file.
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    buttons->button(QDialogButtonBox::Close)->setText(QStringLiteral("Close"));
    buttons->button(QDialogButtonBox::Close)->setAutoDefault(false);
    connect(buttons, &QDialogButtonBox::rejected, this, &CDLG_PROCESSINGMAP::reject);
    note_ = new QLabel(this);
    note_->setObjectName(QStringLiteral("note"));
    note_->setWordWrap(true);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(body, 1);
    layout->addWidget(note_);
    layout->addWidget(buttons);

    connect(run_, &zelko::ui::BackgroundRun::progressed, progress_, &QProgressBar::setValue);
    connect(run_, &zelko::ui::BackgroundRun::runningChanged, this, &CDLG_PROCESSINGMAP::setRunning);
    setRunning(false);
    translateWindow(this, QStringLiteral("ProcessingMap"));
    resize(1100, 560);
}

CDLG_PROCESSINGMAP::~CDLG_PROCESSINGMAP() = default;

void CDLG_PROCESSINGMAP::draw()
{
    if (run_->running() || model_->strains.empty())
        return;
    const std::optional<double> step = zelko::ui::fieldNumber(contourStep_->text());
    if (!step || !(*step >= kSmallestContourStep && *step <= 100.0)) {
        zelko::ui::refuseField(this, contourStep_);
        return;
    }
    const QList<QListWidgetItem*> chosen = strains_->selectedItems();
    const std::size_t strain = chosen.isEmpty() ? 0 : static_cast<std::size_t>(strains_->row(chosen.first()));
    run_->start([model = model_, folder = environment_.exchangeFolder, strain, step = *step,
                 this](const RunControl& control) -> std::function<void()> {
        std::string error;
        const std::optional<ProcessingMap> map = computeProcessingMap(*model, strain, error, control);
        // Stopped once the map was done: the files stay as they were all the same.
        std::optional<ProcessingMapFiles> files;
        if (map && !control.stopRequested())
            files = writeProcessingMapFiles(*map, 0, *model, step, folder, error);
        if (!files)
            return {};
        const EfficiencyRange range = efficiencyRange(*map, 0);
        return [this, script = files->script, range, step] { finishMap(script, range, step); };
    });
}

void CDLG_PROCESSINGMAP::finishMap(const std::filesystem::path& script, const EfficiencyRange& range, double step)
{
    plot_->clear();
    plot_->load(script);
    if (range.empty) {
        note_->clear();
        return;
    }
    const QString span = translateText(QStringLiteral("Efficiency from %1 % to %2 %."))
                             .arg(zelko::ui::numberText("%.1f", range.min), zelko::ui::numberText("%.1f", range.max));
    // An empty power map looks like a failure; say why it is empty.
    note_->setText(drawsNoContour(range, step)
                       ? span + QLatin1Char(' ') +
                             translateText(QStringLiteral("No contour level falls in that range: try a smaller step."))
                       : span);
}

QString CDLG_PROCESSINGMAP::note() const { return note_->text(); }

bool CDLG_PROCESSINGMAP::mapRunning() const { return run_->running(); }

void CDLG_PROCESSINGMAP::cancelMap() { run_->cancel(); }

void CDLG_PROCESSINGMAP::setRunning(bool running)
{
    progress_->setVisible(running);
    cancel_->setVisible(running);
    draw_->setEnabled(!running);
    strains_->setEnabled(!running);
    contourStep_->setEnabled(!running);
}

void CDLG_PROCESSINGMAP::reject()
{
    run_->cancel();
    QDialog::reject();
}
