#include "ui/heatdlg.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include "base/fileio.h"
#include "material/physprops.h"
#include "ui/listctrlext.h"
#include "ui/screentext.h"

using namespace zelko;

namespace {

enum Command { Add, Modify, Remove };

ThermalTable tableOf(int which) { return which == 0 ? ThermalTable::Conductivity : ThermalTable::HeatCapacity; }

}  // namespace

CHeatDlg::CHeatDlg(PropertyTable conductivity, PropertyTable heatCapacity, QWidget* parent)
    : QDialog(parent), tables_{std::move(conductivity), std::move(heatCapacity)}
{
    setObjectName(QStringLiteral("CHeatDlg"));
    setWindowTitle(QStringLiteral("Thermal information"));
    auto* sides = new QHBoxLayout;
    sides->addWidget(makeSide(0, QStringLiteral("Thermal conductivity"), QStringLiteral("Thermal conductivity (k)")));
    sides->addWidget(makeSide(1, QStringLiteral("Volumetric heat capacity"),
                              QStringLiteral("Volumetric heat capacity (ρc)")));

    auto* steel = new QPushButton(QStringLiteral("Steel"), this);
    auto* aluminum = new QPushButton(QStringLiteral("Aluminum"), this);
    auto* open = new QPushButton(QStringLiteral("Open data file"), this);
    open->setObjectName(QStringLiteral("openDataFile"));
    steel->setObjectName(QStringLiteral("steel"));
    aluminum->setObjectName(QStringLiteral("aluminum"));
    connect(steel, &QPushButton::clicked, this, [this] {
        applyThermalPreset(MaterialPreset::Steel, tables_[0], tables_[1]);
        redrawAll();
    });
    connect(aluminum, &QPushButton::clicked, this, [this] {
        applyThermalPreset(MaterialPreset::Aluminum, tables_[0], tables_[1]);
        redrawAll();
    });
    connect(open, &QPushButton::clicked, this, &CHeatDlg::chooseDataFile);
    auto* commands = new QHBoxLayout;
    for (QPushButton* button : {steel, aluminum, open}) {
        button->setAutoDefault(false);
        commands->addWidget(button);
    }
    commands->addStretch();

    auto* buttons = zelko::ui::okCancelButtons(this);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(sides);
    layout->addLayout(commands);
    layout->addWidget(buttons);
    redrawAll();
    translateWindow(this, QStringLiteral("Heat"));
}

QWidget* CHeatDlg::makeSide(int which, const QString& title, const QString& valueTitle)
{
    auto* group = new QGroupBox(title, this);
    Side& side = sides_[which];
    auto* grid = new zelko::ui::CListCtrlExt(group);
    grid->setColumnCount(2);
    grid->setRealOnly(true);
    grid->setNegativesAllowed(true);
    grid->setTooltipsEnabled(true);
    side.list = grid;
    side.list->setObjectName(which == 0 ? QStringLiteral("conductivityList") : QStringLiteral("heatCapacityList"));
    side.list->setHorizontalHeaderLabels({QStringLiteral("Temperature"), valueTitle});
    side.list->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    side.list->horizontalHeader()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    const int rowHeight = zelko::ui::setUpPointList(side.list);
    side.list->setSelectionMode(QAbstractItemView::SingleSelection);
    // The presets' eight points and a header fit without scrolling.
    side.list->setMinimumSize(380, 10 * rowHeight);
    side.temperature = new QLineEdit(group);
    side.value = new QLineEdit(group);
    side.temperature->setObjectName(QStringLiteral("temperature%1").arg(which));
    side.value->setObjectName(QStringLiteral("value%1").arg(which));
    // Cells typed over, rows pasted from a spreadsheet or a dropped CSV go through
    // the same rule as Add: one point a temperature, sorted.
    connect(grid, &zelko::ui::CListCtrlExt::contentEdited, this, [this, which] { takeGrid(which); });
    // A row picked in the list is copied into the fields, to be changed and modified.
    connect(side.list, &QTableWidget::itemSelectionChanged, this, [this, which] {
        const int row = sides_[which].list->currentRow();
        if (row < 0 || row >= static_cast<int>(tables_[which].size()))
            return;
        const TablePoint& point = tables_[which][static_cast<std::size_t>(row)];
        sides_[which].temperature->setText(zelko::ui::fieldText(point.temperature));
        sides_[which].value->setText(zelko::ui::fieldText(point.value));
    });

    auto* fields = new QGridLayout;
    fields->addWidget(new QLabel(QStringLiteral("Temperature"), group), 0, 0);
    fields->addWidget(side.temperature, 0, 1);
    fields->addWidget(new QLabel(which == 0 ? QStringLiteral("k") : QStringLiteral("ρc"), group), 1, 0);
    fields->addWidget(side.value, 1, 1);
    auto* buttons = new QHBoxLayout;
    const QString names[] = {QStringLiteral("Add"), QStringLiteral("Modify"), QStringLiteral("Remove")};
    for (int command = Add; command <= Remove; ++command) {
        auto* button = new QPushButton(names[command], group);
        button->setObjectName(names[command].toLower() + QString::number(which));
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, [this, which, command] { edit(which, command); });
        buttons->addWidget(button);
    }
    auto* layout = new QVBoxLayout(group);
    layout->addWidget(side.list);
    layout->addLayout(fields);
    layout->addLayout(buttons);
    return group;
}

void CHeatDlg::edit(int which, int command)
{
    Side& side = sides_[which];
    const int selected = side.list->selectionModel()->hasSelection() ? side.list->currentRow() : -1;
    ThermalEdit result;
    if (command == Remove) {
        result = removeThermalPoint(tables_[which], tableOf(which), selected);
    } else {
        const auto temperature = zelko::ui::fieldNumber(side.temperature->text());
        if (!temperature)
            return zelko::ui::refuseField(this, side.temperature);
        const auto value = zelko::ui::fieldNumber(side.value->text());
        if (!value)
            return zelko::ui::refuseField(this, side.value);
        const TablePoint point{*temperature, *value};
        result = command == Add ? addThermalPoint(tables_[which], point)
                                : modifyThermalPoint(tables_[which], tableOf(which), selected, point);
    }
    if (!result.message.empty())
        QMessageBox::warning(this, windowTitle(), zelko::ui::fromUtf8(result.message));
    if (result.changed)
        redraw(which, "%.8f");
}

void CHeatDlg::takeGrid(int which)
{
    QTableWidget* list = sides_[which].list;
    PropertyTable table;
    for (int row = 0; row < list->rowCount(); ++row) {
        const QTableWidgetItem* temperature = list->item(row, 0);
        const QTableWidgetItem* value = list->item(row, 1);
        const auto t = temperature ? zelko::ui::fieldNumber(temperature->text()) : std::nullopt;
        const auto v = value ? zelko::ui::fieldNumber(value->text()) : std::nullopt;
        if (t && v)
            addThermalPoint(table, {*t, *v});
    }
    tables_[which] = std::move(table);
    redraw(which, "%.8f");
}

void CHeatDlg::redraw(int which, const char* format)
{
    QTableWidget* list = sides_[which].list;
    const PropertyTable& table = tables_[which];
    list->clearSelection();
    list->setRowCount(static_cast<int>(table.size()));
    for (int row = 0; row < list->rowCount(); ++row) {
        const TablePoint& point = table[static_cast<std::size_t>(row)];
        list->setItem(row, 0, new QTableWidgetItem(zelko::ui::numberText(format, point.temperature)));
        list->setItem(row, 1, new QTableWidgetItem(zelko::ui::numberText(format, point.value)));
    }
}

void CHeatDlg::chooseDataFile()
{
    const QString path = QFileDialog::getOpenFileName(this, QStringLiteral("Open data file"), lastFolder_,
                                                      QStringLiteral("JmatPro PhysProps File(*PhysProps.dat)"));
    if (path.isEmpty())
        return;
    lastFolder_ = QFileInfo(path).absolutePath();
    importDataFile(path);
}

bool CHeatDlg::importDataFile(const QString& path)
{
    std::string error;
    const auto bytes = readFileBytes(std::filesystem::path(path.toStdU16String()), error);
    if (!bytes) {
        QMessageBox::warning(this, windowTitle(), QStringLiteral("%1: %2").arg(path, zelko::ui::fromUtf8(error)));
        return false;
    }
    PhysPropsImport imported = importPhysProps(*bytes);
    if (!imported.ok) {
        QMessageBox::warning(this, windowTitle(), zelko::ui::fromUtf8(imported.message));
        return false;
    }
    tables_[0] = std::move(imported.conductivity);
    tables_[1] = std::move(imported.heatCapacity);
    redrawAll();
    return true;
}

void CHeatDlg::keyPressEvent(QKeyEvent* event)
{
    // Enter in a field must not close the screen with half-typed points.
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
}
