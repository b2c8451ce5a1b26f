#include "ui/dialogoption.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QStandardPaths>
#include <QVBoxLayout>

#include "ui/formlanguage.h"

CDialogOption::CDialogOption(int langId, QWidget* parent) : QDialog(parent), openedLangId_(langId)
{
    setObjectName(QStringLiteral("CDialogOption"));
    setWindowTitle(QStringLiteral("Option..."));
    categories_ = new QListWidget(this);
    categories_->setObjectName(QStringLiteral("categories"));
    categories_->addItem(QStringLiteral("Language"));
    categories_->setCurrentRow(0);
    languagePage_ = new CFormLanguage(langId, this);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    // Fixed captions: the platform theme's own ("&OK") would miss the translation files.
    buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("OK"));
    buttons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("Cancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* pages = new QHBoxLayout;
    pages->addWidget(categories_);
    pages->addWidget(languagePage_, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(pages);
    layout->addWidget(buttons);

    translateWindow(this, QStringLiteral("Option"));
    // List items are not touched by the window walk; the category is the dialog's own text.
    QListWidgetItem* category = categories_->item(0);
    category->setText(translateText(category->text()));
    categories_->setFixedWidth(categories_->sizeHintForColumn(0) + 2 * categories_->frameWidth() + 24);
    resize(440, 240);
}

int CDialogOption::languageId() const
{
    const int selected = languagePage_->selectedLanguageId();
    return selected >= 0 ? selected : openedLangId_;
}

namespace zelko::ui {

QString optionsFilePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
           + QStringLiteral("/PELD/ZELKO_MAT.ini");
}

}  // namespace zelko::ui
