#include "ui/plasticroomadvdlg.h"

#include <QCheckBox>
#include <cmath>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QMessageBox>
#include <QVBoxLayout>

#include "ui/listctrlext.h"
#include "ui/screentext.h"

using namespace zelko;
using zelko::ui::fieldNumber;
using zelko::ui::fieldText;
using zelko::ui::numberText;

namespace {

enum Column { Variable, Initial, Minimum, Maximum, Fixed, ColumnCount };

}  // namespace

ColdFitOptions ColdFitOptions::of(const RoomOri& record, ColdLawId law, FitMethod method)
{
    ColdFitOptions options;
    const std::shared_ptr<ColdLaw> model = makeColdLaw(law, record);
    options.bounds = model ? model->bounds() : record.parameterBounds;
    options.fixedParameters = record.fixedParameters;
    options.automaticStart = record.automaticStart;
    options.targetError = record.targetError;
    options.maxIterations = record.maxIterations;
    options.neckingPenaltyWeight = record.neckingPenaltyWeight;
    options.method = method;
    return options;
}

void ColdFitOptions::applyTo(RoomOri& record) const
{
    record.parameterBounds = bounds;
    record.fixedParameters = fixedParameters;
    record.automaticStart = automaticStart;
    record.targetError = targetError;
    record.maxIterations = maxIterations;
    record.neckingPenaltyWeight = neckingPenaltyWeight;
}

CPlasticRoomAdvDlg::CPlasticRoomAdvDlg(ColdLawId law, ColdFitOptions options, QWidget* parent)
    : QDialog(parent), options_(std::move(options))
{
    setObjectName(QStringLiteral("CPlasticRoomAdvDlg"));
    setWindowTitle(QStringLiteral("Numerical option"));
    const std::shared_ptr<ColdLaw> model = makeColdLaw(law, RoomOri());
    if (model)
        names_ = model->variableNames();
    options_.bounds.resize(names_.size());

    list_ = new zelko::ui::CListCtrlExt(static_cast<int>(names_.size()), ColumnCount, this);
    list_->setObjectName(QStringLiteral("parameters"));
    list_->setRealOnly(true);
    list_->setNegativesAllowed(true);
    list_->setHorizontalHeaderLabels({QStringLiteral("Variable"), QStringLiteral("Initial value"),
                                      QStringLiteral("Min value"), QStringLiteral("Max value"),
                                      QStringLiteral("Fixed")});
    const int rowHeight = zelko::ui::setUpPointList(list_);
    list_->setSelectionBehavior(QAbstractItemView::SelectItems);
    for (int row = 0; row < static_cast<int>(names_.size()); ++row) {
        const ParameterBound& bound = options_.bounds[static_cast<std::size_t>(row)];
        auto* name = new QTableWidgetItem(QString::fromLatin1(names_[static_cast<std::size_t>(row)]));
        name->setFlags(name->flags() & ~Qt::ItemIsEditable);
        list_->setItem(row, Variable, name);
        list_->setItem(row, Initial, new QTableWidgetItem(numberText("%g", bound.initial)));
        list_->setItem(row, Minimum, new QTableWidgetItem(numberText("%g", bound.minimum)));
        list_->setItem(row, Maximum, new QTableWidgetItem(numberText("%g", bound.maximum)));
        auto* fixed = new QTableWidgetItem;
        fixed->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
        fixed->setCheckState(row < 32 && (options_.fixedParameters >> row) & 1u ? Qt::Checked : Qt::Unchecked);
        list_->setItem(row, Fixed, fixed);
    }
    list_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    list_->setMinimumHeight(rowHeight * (static_cast<int>(names_.size()) + 2));

    automaticStart_ = new QCheckBox(QStringLiteral("Automatic start values"), this);
    automaticStart_->setObjectName(QStringLiteral("automaticStart"));
    automaticStart_->setChecked(options_.automaticStart);
    targetError_ = new QLineEdit(fieldText(options_.targetError), this);
    targetError_->setObjectName(QStringLiteral("targetError"));
    maxIterations_ = new QLineEdit(QString::number(options_.maxIterations), this);
    maxIterations_->setObjectName(QStringLiteral("maxIterations"));
    neckingWeight_ = new QLineEdit(fieldText(options_.neckingPenaltyWeight), this);
    neckingWeight_->setObjectName(QStringLiteral("neckingPenaltyWeight"));
    method_ = new QComboBox(this);
    method_->setObjectName(QStringLiteral("method"));
    // In the order of FitMethod.
    method_->addItem(QStringLiteral("Steepest descent"));
    method_->addItem(QStringLiteral("Least squares"));
    method_->addItem(QStringLiteral("Steepest descent, then least squares"));
    method_->setCurrentIndex(static_cast<int>(options_.method));

    auto* settings = new QFormLayout;
    settings->addRow(automaticStart_);
    settings->addRow(QStringLiteral("Target error [MPa]"), targetError_);
    settings->addRow(QStringLiteral("Maximum iterations"), maxIterations_);
    settings->addRow(QStringLiteral("Necking penalty weight"), neckingWeight_);
    settings->addRow(QStringLiteral("Method"), method_);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(list_);
    layout->addLayout(settings);
    layout->addWidget(zelko::ui::okCancelButtons(this));
    resize(520, sizeHint().height());
    translateWindow(this, QStringLiteral("PlasticRoomAdv"));
}

void CPlasticRoomAdvDlg::accept()
{
    ColdFitOptions read = options_;
    read.fixedParameters = 0;
    for (int row = 0; row < list_->rowCount(); ++row) {
        ParameterBound& bound = read.bounds[static_cast<std::size_t>(row)];
        double* values[] = {&bound.initial, &bound.minimum, &bound.maximum};
        for (int column = Initial; column <= Maximum; ++column) {
            const std::optional<double> value = fieldNumber(list_->cellText(row, column));
            if (!value) {
                list_->setCurrentCell(row, column);
                zelko::ui::refuseField(this, list_);
                return;
            }
            *values[column - Initial] = *value;
        }
        if (bound.minimum > bound.maximum) {
            list_->setCurrentCell(row, Minimum);
            QMessageBox::warning(this, QStringLiteral("ZELKO_MAT"),
                                 translateText(QStringLiteral("The minimum of %1 is above its maximum."))
                                     .arg(list_->cellText(row, Variable)));
            return;
        }
        if (row < 32 && list_->item(row, Fixed)->checkState() == Qt::Checked)
            read.fixedParameters |= 1u << row;
    }
    const std::optional<double> target = fieldNumber(targetError_->text());
    const std::optional<double> iterations = fieldNumber(maxIterations_->text());
    const std::optional<double> weight = fieldNumber(neckingWeight_->text());
    QLineEdit* refused = !target ? targetError_
                         : !iterations || *iterations != std::floor(*iterations) || *iterations < 0 || *iterations > 1e9
                             ? maxIterations_
                         : !weight ? neckingWeight_
                                   : nullptr;
    if (refused) {
        zelko::ui::refuseField(this, refused);
        return;
    }
    read.automaticStart = automaticStart_->isChecked();
    read.targetError = *target;
    read.maxIterations = static_cast<int>(*iterations);
    read.neckingPenaltyWeight = *weight;
    read.method = static_cast<FitMethod>(method_->currentIndex());
    options_ = std::move(read);
    QDialog::accept();
}
