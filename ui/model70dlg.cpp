#include "ui/model70dlg.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QMap>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "ui/screentext.h"

namespace zelko::ui {

namespace {

constexpr int kValueColumn = 1;
constexpr int kItemRole = Qt::UserRole;

}  // namespace

CDIALOG_INPUT_MATR70::CDIALOG_INPUT_MATR70(const zelko::PLASTIC_70& model, QWidget* parent)
    : QDialog(parent), model_(model)
{
    setObjectName(QStringLiteral("CDIALOG_INPUT_MATR70"));
    setWindowTitle(QStringLiteral("Model 70"));
    grid_ = new QTreeWidget(this);
    grid_->setObjectName(QStringLiteral("parameters"));
    grid_->setColumnCount(2);
    grid_->setHeaderLabels({QStringLiteral("Variable"), QStringLiteral("Value")});
    grid_->setAlternatingRowColors(true);
    grid_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                           QAbstractItemView::SelectedClicked);

    // Categories and groups are made as their first item needs them, so the grid keeps the items' order.
    QMap<QString, QTreeWidgetItem*> parents;
    const auto branch = [&](const QString& path, QTreeWidgetItem* above, const QString& text) {
        if (QTreeWidgetItem* made = parents.value(path))
            return made;
        auto* made = above ? new QTreeWidgetItem(above, {text}) : new QTreeWidgetItem(grid_, {text});
        made->setFirstColumnSpanned(true);
        made->setExpanded(true);
        parents.insert(path, made);
        return made;
    };
    int number = 0;
    for (const zelko::Model70Item& entry : zelko::model70Items()) {
        const QString category = QString::fromLatin1(entry.category);
        const QString group = QString::fromLatin1(entry.group);
        QTreeWidgetItem* above = branch(category + u'/' + group, branch(category, nullptr, category), group);
        auto* item = new QTreeWidgetItem(above, {QString::fromLatin1(entry.label),
                                                 numberText("%g", model_.itemValue(number))});
        item->setFlags(item->flags() | Qt::ItemIsEditable);
        item->setData(0, kItemRole, number);
        items_.push_back(item);
        ++number;
    }
    for (QTreeWidgetItem* top : parents)
        top->setExpanded(true);
    grid_->header()->resizeSection(0, 180);
    connect(grid_, &QTreeWidget::itemChanged, this, &CDIALOG_INPUT_MATR70::itemChanged);

    note_ = new QLabel(this);
    note_->setObjectName(QStringLiteral("note"));
    note_->setWordWrap(true);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(grid_, 1);
    layout->addWidget(note_);
    layout->addWidget(okCancelButtons(this));
    resize(380, 720);  // every item in sight on a 768-line screen
    translateWindow(this, QStringLiteral("PlasticHot"));
}

QTreeWidgetItem* CDIALOG_INPUT_MATR70::item(int number) const
{
    return number >= 0 && number < static_cast<int>(items_.size()) ? items_[static_cast<std::size_t>(number)]
                                                                   : nullptr;
}

bool CDIALOG_INPUT_MATR70::editItem(int number, const QString& text)
{
    QTreeWidgetItem* edited = item(number);
    if (!edited)
        return false;
    edited->setText(kValueColumn, text);  // itemChanged stores it
    return fieldNumber(text).has_value();
}

QString CDIALOG_INPUT_MATR70::note() const { return note_->text(); }

void CDIALOG_INPUT_MATR70::itemChanged(QTreeWidgetItem* changed, int column)
{
    if (column != kValueColumn || !changed->data(0, kItemRole).isValid())
        return;
    const int number = changed->data(0, kItemRole).toInt();
    const std::optional<double> value = fieldNumber(changed->text(kValueColumn));
    if (!value) {
        const QSignalBlocker quiet(grid_);
        changed->setText(kValueColumn, numberText("%g", model_.itemValue(number)));
        refuseField(this, nullptr);
        return;
    }
    model_.setItemValue(number, *value);
    // The forming system reads the parameters by the item table; say where an edit went
    // when it is not the parameter the item shows.
    const zelko::Model70Item& entry = zelko::model70Items()[static_cast<std::size_t>(number)];
    if (entry.storesIn == entry.shows) {
        note_->clear();
        return;
    }
    const zelko::Model70Item& shownBy = zelko::model70Items()[static_cast<std::size_t>(entry.storesIn)];
    note_->setText(translateText(QStringLiteral("The value of %1 is stored in P%2, the parameter %3 shows."))
                       .arg(QString::fromLatin1(entry.label))
                       .arg(entry.storesIn)
                       .arg(QString::fromLatin1(shownBy.label)));
}

}  // namespace zelko::ui
