#include "ui/zenerhollomondlg.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "hot/hotmodels.h"
#include "ui/backgroundrun.h"
#include "ui/listctrlext.h"
#include "ui/screentext.h"

namespace zelko::ui {

namespace {

constexpr int kConstantColumns = 4;  // alpha, n, Q, lnA after "Order"

}  // namespace

CDialogZenerHollomon::CDialogZenerHollomon(const zelko::PLASTIC_Zener_Hollomon& model, QWidget* parent)
    : QDialog(parent), model_(model)
{
    setObjectName(QStringLiteral("CDialogZenerHollomon"));
    setWindowTitle(QStringLiteral("Zener-Hollomon model"));
    // One order a sample strain, even where no fit has filled them yet.
    model_.orders.resize(model_.strains.size());
    for (std::size_t k = 0; k < model_.strains.size(); ++k)
        model_.orders[k].strain = model_.strains[k];

    grid_ = new CListCtrlExt(0, static_cast<int>(zelko::kZenerHollomonColumns.size()), this);
    grid_->setObjectName(QStringLiteral("orders"));
    grid_->setRealOnly(true);
    grid_->setNegativesAllowed(true);
    QStringList headers;
    for (const char* header : zelko::kZenerHollomonColumns)
        headers << QString::fromLatin1(header);
    grid_->setHorizontalHeaderLabels(headers);
    for (int column = 0; column < grid_->columnCount(); ++column)
        grid_->setColumnWidth(column, zelko::kZenerHollomonColumnWidth);
    grid_->verticalHeader()->hide();
    grid_->verticalHeader()->setDefaultSectionSize(grid_->fontMetrics().height() + 8);
    connect(grid_, &CListCtrlExt::contentEdited, this, &CDialogZenerHollomon::cellEdited);

    fit_ = new QPushButton(QStringLiteral("Fit"), this);
    fit_->setObjectName(QStringLiteral("fit"));
    stop_ = new QPushButton(QStringLiteral("Stop fit"), this);
    stop_->setObjectName(QStringLiteral("stopFit"));
    progress_ = new QProgressBar(this);
    progress_->setRange(0, 100);
    // The fit's measures and notes; the constants themselves are in the grid.
    report_ = new QPlainTextEdit(this);
    report_->setObjectName(QStringLiteral("report"));
    report_->setReadOnly(true);
    report_->setMaximumHeight(5 * report_->fontMetrics().height());
    for (QPushButton* button : {fit_, stop_})
        button->setAutoDefault(false);
    connect(fit_, &QPushButton::clicked, this, &CDialogZenerHollomon::fit);
    connect(stop_, &QPushButton::clicked, this, &CDialogZenerHollomon::cancelFit);

    run_ = new BackgroundRun(this);
    connect(run_, &BackgroundRun::progressed, progress_, &QProgressBar::setValue);
    connect(run_, &BackgroundRun::runningChanged, this, &CDialogZenerHollomon::setRunning);

    auto* hint = new QLabel(QStringLiteral("One order for each sample strain, in the order of the strain list."), this);
    hint->setWordWrap(true);
    auto* commands = new QHBoxLayout;
    commands->addWidget(fit_);
    commands->addWidget(progress_, 1);
    commands->addWidget(stop_);
    QDialogButtonBox* buttons = okCancelButtons(this);
    ok_ = buttons->button(QDialogButtonBox::Ok);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(hint);
    layout->addWidget(grid_, 1);
    layout->addLayout(commands);
    layout->addWidget(report_);
    layout->addWidget(buttons);
    resize(5 * zelko::kZenerHollomonColumnWidth + 60, 520);
    translateWindow(this, QStringLiteral("PlasticHot"));
    showOrders();
    setRunning(false);
}

CDialogZenerHollomon::~CDialogZenerHollomon() = default;

void CDialogZenerHollomon::showOrders()
{
    const QSignalBlocker quiet(grid_);
    grid_->setRowCount(static_cast<int>(model_.orders.size()));
    for (int row = 0; row < grid_->rowCount(); ++row) {
        const zelko::ZenerHollomonOrder& order = model_.orders[static_cast<std::size_t>(row)];
        auto* number = new QTableWidgetItem(QString::number(row + 1));
        number->setFlags(number->flags() & ~Qt::ItemIsEditable);
        number->setToolTip(translateText(QStringLiteral("Strain")) + QStringLiteral(" ") +
                           numberText("%g", order.strain));
        grid_->setItem(row, 0, number);
        for (int column = 1; column <= kConstantColumns; ++column) {
            const double value = zelko::orderConstant(order, column);
            grid_->setItem(row, column, new QTableWidgetItem(order.fitted || value != 0.0 ? numberText("%g", value)
                                                                                          : QString()));
        }
    }
}

void CDialogZenerHollomon::cellEdited()
{
    for (int row = 0; row < grid_->rowCount(); ++row)
        for (int column = 1; column <= kConstantColumns; ++column) {
            const std::optional<double> value = fieldNumber(grid_->cellText(row, column));
            zelko::setOrderConstant(model_.orders[static_cast<std::size_t>(row)], column, value.value_or(0.0));
        }
}

void CDialogZenerHollomon::fit()
{
    if (run_->running())
        return;
    progress_->setValue(0);
    run_->start([dataSet = static_cast<const zelko::HotDataSet&>(model_),
                 this](const zelko::RunControl& control) -> std::function<void()> {
        zelko::HotFit fitted = zelko::fitHotModel(dataSet, zelko::HotModelId::ZenerHollomon, {}, control);
        return [this, fitted = std::move(fitted)] {
            if (fitted.cancelled) {
                report_->setPlainText(translateText(QStringLiteral("The fit was stopped; the model is as it was.")));
                progress_->setValue(0);
                return;
            }
            const auto* zener = dynamic_cast<const zelko::PLASTIC_Zener_Hollomon*>(fitted.model.get());
            if (!zener) {
                report_->setPlainText(fromUtf8(fitted.result.message));
                return;
            }
            model_.orders = zener->orders;
            progress_->setValue(100);
            report_->setPlainText(fromUtf8(fitted.result.report));
            showOrders();
        };
    });
}

bool CDialogZenerHollomon::fitRunning() const { return run_->running(); }

void CDialogZenerHollomon::cancelFit() { run_->cancel(); }

void CDialogZenerHollomon::reject()
{
    run_->cancel();
    QDialog::reject();
}

void CDialogZenerHollomon::setRunning(bool running)
{
    fit_->setEnabled(!running);
    stop_->setVisible(running);
    ok_->setEnabled(!running);
    grid_->setEnabled(!running);
}

}  // namespace zelko::ui
