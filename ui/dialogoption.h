#pragma once
// The Options dialog: a list of categories on the left (one, "Language") and
// the chosen category's page on the right. The caller stores the result.

#include <QDialog>
#include <QString>

#include "ui/managertranslate.h"

class CFormLanguage;
class QListWidget;

class CDialogOption : public QDialog, public ManagerTranslate {
    Q_OBJECT
public:
    explicit CDialogOption(int langId, QWidget* parent = nullptr);

    // The language chosen on the page; the one the dialog opened on when the
    // page shows no selection (an unknown number stays as stored).
    int languageId() const;

private:
    int openedLangId_;
    QListWidget* categories_;
    CFormLanguage* languagePage_;
};

namespace zelko::ui {

// The options file: <per-user config folder>/PELD/ZELKO_MAT.ini.
QString optionsFilePath();

}  // namespace zelko::ui
