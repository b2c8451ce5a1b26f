#pragma once
// Model 70's parameter screen: a property grid ("Variable", "Value") of its 28
// items under their categories. An edit is stored through the model's item
// table, which from "Beta11" on names another parameter than the item shows;
// the screen says where each such edit went.

#include <QDialog>

#include "hot/plastic_70.h"
#include "ui/managertranslate.h"

class QLabel;
class QTreeWidget;
class QTreeWidgetItem;

namespace zelko::ui {

class CDIALOG_INPUT_MATR70 : public QDialog, public ManagerTranslate {
    Q_OBJECT
public:
    // The grid shows a copy of the model's parameters; parameters() is the edited copy.
    explicit CDIALOG_INPUT_MATR70(const zelko::PLASTIC_70& model, QWidget* parent = nullptr);

    const zelko::PLASTIC_70& model() const { return model_; }
    // The grid item of an item number (0 to 27), as a user edits it.
    QTreeWidgetItem* item(int number) const;
    // As an edit of the item's value does; false and nothing stored for text that is no number.
    bool editItem(int number, const QString& text);
    QString note() const;

private:
    void itemChanged(QTreeWidgetItem* item, int column);

    zelko::PLASTIC_70 model_;
    QTreeWidget* grid_ = nullptr;
    QLabel* note_ = nullptr;
    std::vector<QTreeWidgetItem*> items_;
};

}  // namespace zelko::ui
