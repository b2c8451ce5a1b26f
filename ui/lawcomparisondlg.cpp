#include "ui/lawcomparisondlg.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QPushButton>
#include <QSplitter>
#include <QTableWidget>
#include <QVBoxLayout>

#include "ui/chartview.h"
#include "ui/screentext.h"

using namespace zelko;
using zelko::ui::numberText;
using zelko::ui::pointList;

namespace {

// The parameters last: the widest column takes the room that is left.
enum Column { Law, Error, At01, At05, At10, LibraryBlock, Stop, Parameters, Columns };

// "Y0 = 612 MPa, s0 = 0.0031*, n = 0.2": '*' marks a parameter held at a bound.
QString parameterText(const LawComparison& row)
{
    QStringList parts;
    const std::vector<const char*> names = row.fitted->variableNames();
    for (std::size_t k = 0; k < names.size() && k < row.fitted->parameters.size(); ++k) {
        const std::string_view unit = coldParameterUnit(row.law, k);
        QString part = QString::fromLatin1(names[k]) + QStringLiteral(" = ")
                       + numberText("%.4g", row.fitted->parameters[k]);
        if (unit != "-")
            part += QLatin1Char(' ') + QString::fromLatin1(unit.data(), static_cast<int>(unit.size()));
        if (k < row.atBound.size() && row.atBound[k])
            part += QLatin1Char('*');
        parts << part;
    }
    return parts.join(QStringLiteral(", "));
}

}  // namespace

CLawComparisonDlg::CLawComparisonDlg(const LawComparisonResult& result, const ChartPoints& measured,
                                     const QString& measuredName, QWidget* parent)
    : QDialog(parent), rows_(result.rows)
{
    setObjectName(QStringLiteral("CLawComparisonDlg"));
    setWindowTitle(QStringLiteral("Compare laws"));
    table_ = new QTableWidget(static_cast<int>(rows_.size()), Columns, this);
    table_->setObjectName(QStringLiteral("comparison"));
    table_->setHorizontalHeaderLabels({QStringLiteral("Law"), QStringLiteral("RMSE [MPa]"),
                                       QStringLiteral("Stress at 0.1"), QStringLiteral("Stress at 0.5"),
                                       QStringLiteral("Stress at 1.0"), QStringLiteral("Library block"),
                                       QStringLiteral("Stop"), QStringLiteral("Parameters")});
    const int rowHeight = zelko::ui::setUpPointList(table_);
    // Every law in sight at once, with the header.
    table_->setMinimumHeight(rowHeight * (static_cast<int>(rows_.size()) + 2));
    table_->setSelectionMode(QAbstractItemView::SingleSelection);
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);

    chart_ = new zelko::ui::ChartView(this);
    chart_->setObjectName(QStringLiteral("comparisonChart"));
    chart_->setAxisTitles(QStringLiteral("Strain"), QStringLiteral("Stress [MPa]"));
    chart_->setAppearanceName(QStringLiteral("Nature"));
    chart_->setPaletteName(QStringLiteral("Vibrant"));

    auto* buttons = zelko::ui::okCancelButtons(this);
    buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("Use this law"));
    auto* split = new QSplitter(Qt::Vertical, this);
    split->addWidget(table_);
    split->addWidget(chart_);
    split->setStretchFactor(1, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(split, 1);
    layout->addWidget(buttons);
    translateWindow(this, QStringLiteral("PlasticRoom"));
    // Filled once the translation is loaded: the laws and the chart are named in the screen's language.
    chart_->setAxisTitles(translateText(QStringLiteral("Strain")), translateText(QStringLiteral("Stress [MPa]")));
    chart_->addSeries(measuredName, pointList(measured), zelko::ui::SeriesRole::Measured);
    for (int row = 0; row < static_cast<int>(rows_.size()); ++row) {
        const LawComparison& law = rows_[static_cast<std::size_t>(row)];
        const QString title = translateText(QString::fromLatin1(coldLawTitle(law.law)));
        const auto cell = [&](int column, const QString& text) {
            auto* item = new QTableWidgetItem(text);
            item->setTextAlignment(column == Law || column == Parameters || column == Stop
                                       ? Qt::AlignLeft | Qt::AlignVCenter
                                                                         : Qt::AlignRight | Qt::AlignVCenter);
            table_->setItem(row, column, item);
        };
        cell(Law, title);
        cell(LibraryBlock, law.hasLibraryBlock ? translateText(QStringLiteral("yes")) : translateText(QStringLiteral("no")));
        if (!law.fitted) {
            cell(Parameters, QString::fromStdString(law.message));
            continue;
        }
        cell(Error, numberText("%.4g", law.rmse));
        cell(Parameters, parameterText(law));
        cell(At01, numberText("%.1f", law.extrapolated[0]));
        cell(At05, numberText("%.1f", law.extrapolated[1]));
        cell(At10, numberText("%.1f", law.extrapolated[2]));
        cell(Stop, translateText(QString::fromLatin1(fitStopWord(law.fitted->fitEnd.stop))));
        chart_->addSeries(title, pointList(lawPoints(*law.fitted, *law.fitted, CurveForm::True)),
                          zelko::ui::SeriesRole::Model);
    }
    table_->resizeColumnsToContents();
    table_->horizontalHeader()->setStretchLastSection(true);
    if (!rows_.empty())
        table_->selectRow(0);
    connect(table_, &QTableWidget::cellDoubleClicked, this, [this] { accept(); });
    resize(1200, 720);
}

void CLawComparisonDlg::accept()
{
    const int row = table_->currentRow();
    if (row < 0 || row >= static_cast<int>(rows_.size()) || !rows_[static_cast<std::size_t>(row)].fitted)
        return;
    chosen_ = rows_[static_cast<std::size_t>(row)].law;
    QDialog::accept();
}
