#include "ui/formlanguage.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>

CFormLanguage::CFormLanguage(int langId, QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("CFORM_LANGUAGE"));
    auto* group = new QGroupBox(QStringLiteral("Language"), this);
    languages_ = new QComboBox(group);
    languages_->setObjectName(QStringLiteral("languages"));
    // Each language in its own script, so anyone can find theirs; the index is the langId.
    languages_->addItems({QStringLiteral("English"), QStringLiteral("한국어"), QStringLiteral("日本語")});
    languages_->setCurrentIndex(langId >= 0 && langId < languages_->count() ? langId : -1);
    auto* form = new QFormLayout(group);
    form->addRow(new QLabel(QStringLiteral("Display language"), group), languages_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(group);
    layout->addStretch();
    translateWindow(this, QStringLiteral("Language"));
}

int CFormLanguage::selectedLanguageId() const { return languages_->currentIndex(); }
