#include "ui/elasticdlg.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "material/elastic.h"
#include "material/thermaltables.h"
#include "ui/listdatadlg.h"
#include "ui/screentext.h"

using namespace zelko;

namespace {

const char* const kRowLabels[kElasticPropertyCount] = {
    "Young's modulus (YM)", "Poisson's ratio (PR)", "Density (DS)", "Coefficient of thermal expansion (TX)"};
// Poisson's ratio has no unit, so no selector.
const char* const kUnits[kElasticPropertyCount] = {"[MPa]", nullptr, "[kg/m³]", "[1/℃]"};

}  // namespace

CElasticDlg::CElasticDlg(const ELASTIC& elastic, const ChemicalComposition& composition, QWidget* parent)
    : QDialog(parent), values_(elasticScreenValues(elastic)), composition_(composition)
{
    setObjectName(QStringLiteral("CElasticDlg"));
    setWindowTitle(QStringLiteral("Elastic properties"));
    auto* grid = new QGridLayout;
    for (int i = 0; i < kElasticPropertyCount; ++i) {
        grid->addWidget(new QLabel(QString::fromUtf8(kRowLabels[i]), this), i, 0);
        formSelectors_[i] = new QComboBox(this);
        formSelectors_[i]->addItem(QStringLiteral("Set to"));
        grid->addWidget(formSelectors_[i], i, 1);
        valueFields_[i] = new QLineEdit(this);
        valueFields_[i]->setObjectName(QStringLiteral("value%1").arg(i));
        valueFields_[i]->setMinimumWidth(140);
        grid->addWidget(valueFields_[i], i, 2);
        listButtons_[i] = new QPushButton(QStringLiteral("List"), this);
        listButtons_[i]->setObjectName(QStringLiteral("list%1").arg(i));
        listButtons_[i]->hide();
        grid->addWidget(listButtons_[i], i, 3);
        if (kUnits[i]) {
            auto* unit = new QComboBox(this);
            unit->addItem(QString::fromUtf8(kUnits[i]));
            unit->setCurrentIndex(0);
            grid->addWidget(unit, i, 4);
        }
        connect(formSelectors_[i], &QComboBox::activated, this, [this, i](int index) {
            values_.formIndex[static_cast<std::size_t>(i)] = index;
            showForm(i);
        });
        connect(listButtons_[i], &QPushButton::clicked, this, [this, i] { openList(i); });
    }

    auto* steel = new QPushButton(QStringLiteral("Steel"), this);
    auto* aluminum = new QPushButton(QStringLiteral("Aluminum"), this);
    for (QPushButton* preset : {steel, aluminum})
        preset->setAutoDefault(false);
    connect(steel, &QPushButton::clicked, this, [this] {
        applyElasticPreset(MaterialPreset::Steel, values_);
        showValues();
    });
    connect(aluminum, &QPushButton::clicked, this, [this] {
        applyElasticPreset(MaterialPreset::Aluminum, values_);
        showValues();
    });
    auto* presets = new QHBoxLayout;
    presets->addWidget(steel);
    presets->addWidget(aluminum);
    presets->addStretch();

    auto* buttons = zelko::ui::okCancelButtons(this);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addLayout(presets);
    layout->addWidget(buttons);

    for (int i = 0; i < kElasticPropertyCount; ++i) {
        // A table loaded from a file has no entry of its own in the selector.
        formSelectors_[i]->setCurrentIndex(values_.formIndex[static_cast<std::size_t>(i)] == 0 ? 0 : -1);
        showForm(i);
    }
    showValues();
    translateWindow(this, QStringLiteral("Elastic"));
}

void CElasticDlg::showForm(int property)
{
    const bool field = values_.formIndex[static_cast<std::size_t>(property)] == 0;
    valueFields_[property]->setVisible(field);
    listButtons_[property]->setVisible(!field);
}

void CElasticDlg::showValues()
{
    for (int i = 0; i < kElasticPropertyCount; ++i)
        valueFields_[i]->setText(zelko::ui::fieldText(values_.value[static_cast<std::size_t>(i)]));
}

void CElasticDlg::openList(int property)
{
    auto& table = values_.workingTables[static_cast<std::size_t>(property)];
    CDlgListData list(property, table, composition_, this);
    if (list.exec() == QDialog::Accepted)
        table = list.table();
}

void CElasticDlg::accept()
{
    for (int i = 0; i < kElasticPropertyCount; ++i) {
        if (values_.formIndex[static_cast<std::size_t>(i)] != 0)
            continue;  // a table: its field is hidden and not taken
        const auto number = zelko::ui::fieldNumber(valueFields_[i]->text());
        if (!number) {
            zelko::ui::refuseField(this, valueFields_[i]);
            return;
        }
        values_.value[static_cast<std::size_t>(i)] = *number;
    }
    QDialog::accept();
}

void CElasticDlg::keyPressEvent(QKeyEvent* event)
{
    // Enter neither closes the screen nor presses a button.
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
}
