#pragma once
// The language page of the Options dialog.

#include <QWidget>

#include "ui/managertranslate.h"

class QComboBox;

class CFormLanguage : public QWidget, public ManagerTranslate {
    Q_OBJECT
public:
    // Opens on langId; a number without an entry (a hand-edited options file)
    // shows no selection.
    explicit CFormLanguage(int langId, QWidget* parent = nullptr);

    // The chosen entry's index, which is its langId; -1 when none is chosen.
    int selectedLanguageId() const;

private:
    QComboBox* languages_;
};
